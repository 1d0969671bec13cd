#include "link/RawRequestFiles.h"

#include "base/Text.h"
#include "platform/system/FileBytes.h"
#include "store/AppFolder.h"
#include "store/clsMFD.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

RawRequestFiles::RawRequestFiles(const AppFolder& folder, const clsMFD& store) : m_folder(folder), m_store(store) {}

void RawRequestFiles::look()
{
    m_ready.clear();
    std::vector<std::string> names = m_folder.fileNames("\\RCData");
    std::erase_if(m_known,
                  [&](const auto& known) { return !std::binary_search(names.begin(), names.end(), known.first); });
    if (names.size() > maxPerLook) {
        std::rotate(names.begin(), std::upper_bound(names.begin(), names.end(), m_lookedUpTo), names.end());
        names.resize(maxPerLook);
    }
    for (const std::string& name : names)
        lookAt(name);
    m_lookedUpTo = names.empty() ? std::string() : names.back();
}

void RawRequestFiles::lookAt(const std::string& name)
{
    Known& known = m_known[name];
    try {
        const State state = stateOf(name);
        if (state != std::exchange(known.state, state))
            known.isSetAside = false;
        else if (state.size != 0 && !known.isSetAside)
            m_ready.push_back(name);
    } catch (const RuntimeError& fault) {
        setAside(known, fault);
    }
}

std::optional<std::string> RawRequestFiles::takeNext()
{
    while (!m_ready.empty()) {
        const std::string name = std::move(m_ready.front());
        m_ready.pop_front();
        if (std::optional<std::string> text = take(name))
            return text;
    }
    return {};
}

std::optional<std::string> RawRequestFiles::take(const std::string& name)
{
    Known& known = m_known.at(name);
    try {
        const fs::path file = pathOf(name);
        std::string text = join(m_store.ReadFile(file), {});
        if (stateOf(name) != known.state)
            return {}; // somebody writes it again
        if (text.empty()) {
            known.isSetAside = true; // nothing but line breaks
            return {};
        }
        std::error_code fault;
        if (!fs::remove(file, fault))
            throwFileError(fault ? fault : std::make_error_code(std::errc::no_such_file_or_directory), file);
        m_known.erase(name);
        return text;
    } catch (const RuntimeError& fault) {
        setAside(known, fault);
        return {};
    }
}

void RawRequestFiles::setAside(Known& known, const RuntimeError& fault)
{
    if (fault.number() == ErrorNumber::FileNotFound || fault.number() == ErrorNumber::PathNotFound)
        return; // somebody has taken it back
    known.isSetAside = true;
    if (std::exchange(known.isTold, true))
        return;
    if (m_fault)
        ++m_furtherFaults;
    else
        m_fault = fault;
}

std::optional<RuntimeError> RawRequestFiles::takeFault()
{
    std::optional<RuntimeError> fault = std::exchange(m_fault, {});
    if (const std::size_t further = std::exchange(m_furtherFaults, 0); fault && further != 0)
        fault = fault->followedBy(" (and " + std::to_string(further) + " further files)");
    return fault;
}

fs::path RawRequestFiles::pathOf(const std::string& name) const
{
    return m_folder.path("\\RCData\\" + name);
}

RawRequestFiles::State RawRequestFiles::stateOf(const std::string& name) const
{
    const fs::path file = pathOf(name);
    std::error_code fault;
    const auto checked = [&](auto value) {
        if (fault)
            throwFileError(fault, file);
        return value;
    };
    State state;
    state.size = checked(fs::file_size(file, fault));
    state.written = checked(fs::last_write_time(file, fault));
    state.rights = checked(fs::status(file, fault)).permissions();
    return state;
}
