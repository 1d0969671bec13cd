// A plugin whose members all do something that can be seen. Its build says what its constructor (CONSTRUCTION) and what
// the reading of its data (DATA) does.
#include "qrvrc_plugin.hpp"

#include <cstdlib>
#include <stdexcept>

#include <unistd.h>

namespace {

class Sample : public qrvrc::Plugin
{
public:
    Sample() { CONSTRUCTION; }

    qrvrc::Data data() const override
    {
        DATA;
        qrvrc::Data data;
        data.name = "Sample";
        data.profileMenu = true;
        data.profileMenuItems = {"One", "Two"};
        return data;
    }
    void SetPrivis(const qrvrc::Privileges& privileges, const qrvrc::Privileges& further, bool isSuper) override
    {
        for (const auto& [name, value] : privileges)
            m_seen.push_back(name + " is " + value);
        m_seen.push_back(std::to_string(further.size()) + (isSuper ? " super" : " not super"));
    }
    void LoadInterface(std::int32_t profileId, std::int32_t window, std::vector<std::string>& list,
                       const std::string& user) override
    {
        m_seen.push_back(std::to_string(profileId) + ' ' + std::to_string(window) + ' ' + list.at(0) + ' ' + user);
        list = m_seen;
    }
    void HideInterface(const std::string& text) override
    {
        throw qrvrc::Error(1001, "cannot hide " + text + " (" + qrvrc::codePage() + ": " + qrvrc::toUtf8(text) + ')');
    }
    void RemoteData(const std::string& payload) override
    {
        if (payload.empty())
            throw 5;
        throw std::runtime_error("odd payload " + payload);
    }

private:
    std::vector<std::string> m_seen;
};

} // namespace

QRVRC_PLUGIN(Sample, "sample.clsPlugin", "1.2.3.4");
