#include "qrvrc_plugin.hpp"

namespace {

class TemplatePlugin : public qrvrc::Plugin
{
public:
    qrvrc::Data data() const override
    {
        qrvrc::Data data;
        data.name = "Template"; // exactly as the tracker reports its part of the plugin
        data.file = "qrvrcTemplate.dll";
        data.version = "1.0.0.0";
        data.author = "Your name";
        data.description = "What it does for the administrator.";
        data.hasInterface = true;
        data.serverMenu = true;
        data.serverMenuItems = {"Template"};
        data.minRccVer = "3000";
        return data;
    }

    void SetPrivis(const qrvrc::Privileges& privileges, const qrvrc::Privileges& /*further*/, bool isSuper) override
    {
        m_mayDoIt = isSuper;
        for (const auto& [name, value] : privileges)
            m_mayDoIt = m_mayDoIt || (name == "Template" && value == "1");
    }

    void LoadInterface(std::int32_t /*profileId*/, std::int32_t /*window*/, std::vector<std::string>& /*list*/,
                       const std::string& /*user*/) override
    {
        if (!m_mayDoIt)
            throw qrvrc::Error(70, "this account may not use the plugin");
        // Show a window here, and return at once.
    }

    void RemoteData(const std::string& /*payload*/) override
    {
        // Comes to an instance made for this one message: keep what must last outside of the class.
    }

private:
    bool m_mayDoIt = false;
};

} // namespace

QRVRC_PLUGIN(TemplatePlugin, "qrvrcTemplate.clsPlugin", "1.0.0.0");
