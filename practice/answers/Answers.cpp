#include "practice/answers/Answers.h"

#include <array>
#include <string_view>

namespace practice {

namespace {

struct Room
{
    std::string_view request;
    Answer (*answer)(World&, const Account&, const Request&);
};

constexpr std::array<Room, 18> rooms{{
    {"GetStatus", answerGetStatus},
    {"GetProfiles", answerGetProfiles},
    {"GetProfile", answerGetProfile},
    {"SetProfile", answerSetProfile},
    {"Attach", answerAttach},
    {"Detach", answerDetach},
    {"StopGame", answerStopGame},
    {"DeleteProfile", answerDeleteProfile},
    {"GetProfileAdmins", answerGetProfileAdmins},
    {"GetProfileAdminPrivis", answerGetProfileAdminPrivis},
    {"AddProfileAdmin", answerAddProfileAdmin},
    {"ModifyProfileAdmin", answerModifyProfileAdmin},
    {"DeleteProfileAdmin", answerDeleteProfileAdmin},
    {"KickProfileAdmin", answerKickProfileAdmin},
    {"GetPlayerStats", answerGetPlayerStats},
    {"GetFileList", answerGetFileList},
    {"GetRemFile", answerGetRemFile},
    {"RCData", answerRawRequest},
}};

} // namespace

LoginAnswer answerLogin(const World& world, const QByteArray& rest)
{
    const QByteArray credentials = rest.left(qMax<qsizetype>(0, rest.lastIndexOf('_'))); // without the version
    bool known = false;
    for (const Account& account : world.accounts) {
        if (credentials == account.name + '_' + account.password) {
            const QByteArray privileges = account.super ? "Super" : account.privileges.text(world.sections());
            return {"Success_" + world.hostName.toBase64() + '_' + world.version + '_' + privileges.toBase64() + '_' +
                        QByteArray::number(world.supportPort),
                    account.name};
        }
        known = known || credentials.startsWith(account.name + '_');
    }
    return {known ? "Login Failed: wrong password." : "Login Failed: unknown user name."};
}

Answer answerRequest(World& world, const Account& who, const Request& request)
{
    for (const Room& room : rooms) {
        if (room.request == std::string_view(request.name.constData(), static_cast<std::size_t>(request.name.size())))
            return room.answer(world, who, request);
    }
    return {};
}

Answer answerGetStatus(World& world, const Account&, const Request&)
{
    QList<QByteArray> entries;
    for (const TrackerPlugin& plugin : world.plugins) {
        entries +=
            plugin.name.toBase64() + (plugin.enabled ? "-1-" : "-0-") + plugin.file.toBase64() + '-' + plugin.version;
    }
    return {"Status_" + entries.join('|')};
}

} // namespace practice
