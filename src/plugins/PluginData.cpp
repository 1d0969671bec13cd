#include "plugins/PluginData.h"

#include "base/RuntimeError.h"

#include <string_view>

namespace {

std::vector<std::string> textsOf(const ComponentValue& value)
{
    std::vector<std::string> texts;
    for (const ComponentValue& item : *value.toList())
        texts.push_back(item.toString());
    return texts;
}

} // namespace

PluginData readPluginData(ComponentObject& plugin)
{
    // What fails says which property it was about.
    const auto read = [&plugin](std::string_view property, auto convert) {
        try {
            return convert(plugin.call("GetData").toObject()->call(property));
        } catch (const RuntimeError& error) {
            std::string said = error.description();
            if (const auto sentence = std::string(errorSentence(error.number())) + ": "; said.starts_with(sentence))
                said.erase(0, sentence.size()); // it stands in front anyway
            throw RuntimeError(error.number(), "GetData, " + std::string(property) + ": " + said);
        }
    };
    const auto text = [&read](std::string_view property) {
        return read(property, [](const ComponentValue& value) { return value.toString(); });
    };
    const auto flag = [&read](std::string_view property) {
        return read(property, [](const ComponentValue& value) { return value.toBoolean(); });
    };
    PluginData data;
    data.name = text("Name");
    data.file = text("File");
    data.version = text("Version");
    data.author = text("Author");
    data.description = text("Description");
    data.game = read("Game", [](const ComponentValue& value) { return value; });
    data.hasInterface = flag("HasInterface");
    data.profileMenu = flag("ProfileMenu");
    data.serverMenu = flag("ServerMenu");
    data.profileMenuItems = read("ProfileMenuItems", textsOf);
    data.serverMenuItems = read("ServerMenuItems", textsOf);
    data.helpFile = text("HelpFile");
    data.minClient = text("MinRCCVer");
    data.minModule = text("MinGMFVer");
    return data;
}
