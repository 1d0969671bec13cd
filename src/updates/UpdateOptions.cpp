#include "updates/UpdateOptions.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "link/clsWinSock.h"
#include "platform/CodePage.h"
#include "store/AppFolder.h"
#include "store/FileBytes.h"
#include "store/IniText.h"
#include "store/clsMFD.h"
#include "updates/UpdateAgent.h"
#include "updates/UpdateServices.h"

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view settingsFile = "\\settings\\config.ini";
constexpr std::string_view updateSection = "Settings";
constexpr std::string_view ownSection = "Program";
constexpr std::string_view makerHostKey = "MakerHost";
constexpr std::array locationPaths{"/downloads/QRVV3/rc/", "/Quorvane/qrvrc/"};

/// Addresses and keys are stored as UTF-8, whatever code page the host has.
QString fromFile(const std::string& bytes)
{
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

std::string forFile(const QString& text)
{
    return text.toUtf8().toStdString();
}

} // namespace

QString UpdateOptions::builtIn(int number) const
{
    QUrl url = m_subjects.services.makerHost;
    url.setPath(QString::fromLatin1(locationPaths.at(static_cast<std::size_t>(number - 1))));
    return url.toString();
}

void UpdateOptions::load()
{
    const std::filesystem::path file = m_subjects.folder.path(settingsFile);
    m_values = OptionValues{.location = {}, .codePage = std::string(CodePage::usual), .makerHost = {}, .updateKey = {}};
    if (m_subjects.folder.fileExists(settingsFile)) {
        const clsMFD& store = m_subjects.store;
        const auto own = [&](std::string_view key) { return store.GetIniKey(ownSection, key, file); };
        m_values.location = fromFile(store.GetIniKey(updateSection, "UpdateUrl", file));
        if (m_values.location.isEmpty())
            m_values.location = builtIn(1);
        m_values.automatic = store.GetIniKey(updateSection, "CheckForUpdates", file) == "1";
        if (const auto seconds = parseInt32(own("ReplyTimeout")))
            m_values.replyLimit = std::clamp(std::chrono::seconds(*seconds), minReplyLimit, maxReplyLimit);
        m_values.codePage = own("CodePage");
        m_values.makerHost = fromFile(own(makerHostKey));
        m_values.updateKey = fromFile(own("UpdateKey"));
        if (!m_values.updateKey.isEmpty() && !UpdateKey::fromText(forFile(m_values.updateKey)))
            throw RuntimeError(ErrorNumber::InvalidFileFormat, "UpdateKey"); // rather no updates than unproven ones
    }
    putInForce();
}

void UpdateOptions::save(const OptionValues& values)
{
    m_subjects.folder.makeFolder("\\settings");
    const std::filesystem::path file = m_subjects.folder.path(settingsFile);
    // All in one piece: half of the settings would be none that anybody chose.
    IniText text(readBytesIfPresent(file, IniText::maxBytes).value_or(std::string()), file.string());
    text.setValue(updateSection, "UpdateUrl", forFile(values.location));
    text.setValue(updateSection, "CheckForUpdates", values.automatic ? "1" : "0");
    text.setValue(ownSection, "ReplyTimeout", std::to_string(values.replyLimit.count()));
    text.setValue(ownSection, "CodePage", values.codePage);
    text.setValue(ownSection, makerHostKey, forFile(values.makerHost));
    text.setValue(ownSection, "UpdateKey", forFile(values.updateKey));
    writeBytes(file, text.bytes(), Access::OwnerOnly);
    m_values = values;
    putInForce();
}

void UpdateOptions::setAutomatic(bool automatic)
{
    m_subjects.agent.setAutomatic(automatic);
}

void UpdateOptions::putInForce()
{
    m_subjects.services.location = m_values.location;
    m_subjects.services.key = UpdateKey::fromText(forFile(m_values.updateKey));
    m_subjects.agent.setAutomatic(m_values.automatic);
    m_subjects.link.replyLimit = m_values.replyLimit;
    if (!m_subjects.codePage.use(m_values.codePage)) {
        m_values.codePage = CodePage::usual;
        m_subjects.codePage.use(m_values.codePage);
    }
}

std::string storedMakerHost(const AppFolder& folder)
{
    try {
        const std::filesystem::path file = folder.path(settingsFile);
        const IniText text(readBytesIfPresent(file, IniText::maxBytes).value_or(std::string()), file.string());
        return text.value(ownSection, makerHostKey).value_or(std::string());
    } catch (const RuntimeError&) {
        return {}; // told when the settings are loaded
    }
}

bool isWebHost(const QUrl& url)
{
    return url.isValid() && !url.host().isEmpty() && (url.scheme() == u"http" || url.scheme() == u"https");
}
