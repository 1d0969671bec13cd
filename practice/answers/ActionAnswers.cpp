#include "practice/answers/Answers.h"

namespace practice {

namespace {

bool mayAct(const Account& who, int profile, const char* privilege)
{
    return who.administers(profile) && who.allows("Profiles", privilege);
}

Answer truth(bool done)
{
    return {done ? "True" : "False"};
}

} // namespace

Answer answerAttach(World& world, const Account& who, const Request& request)
{
    const QList<QByteArray> ids = request.tail.split('_');
    const int profile = ids[0].toInt();
    if (!mayAct(who, profile, "Attach Profiles to Games"))
        return truth(false);
    if (ids.size() > 1)
        return truth(world.attach(profile, ids[1].toInt()));

    QList<QByteArray> elements;
    for (const HostProcess& process : world.processes)
        elements += (QByteArray::number(process.id) + '|' + process.name).toBase64();
    return {elements.join('_')};
}

Answer answerDetach(World& world, const Account& who, const Request& request)
{
    const int profile = request.tail.toInt();
    return truth(mayAct(who, profile, "Detach Profiles from Games") && world.detach(profile));
}

Answer answerStopGame(World& world, const Account& who, const Request& request)
{
    const int profile = request.tail.toInt();
    return truth(mayAct(who, profile, "Stop Game from QRV") && world.stopGame(profile));
}

Answer answerDeleteProfile(World& world, const Account& who, const Request& request)
{
    const QByteArray name = request.afterUser(who.name);
    for (const Profile& profile : world.profiles) {
        if (profile.name == name)
            return truth(mayAct(who, profile.id, "Edit Profiles") && world.deleteProfile(name));
    }
    return truth(false);
}

} // namespace practice
