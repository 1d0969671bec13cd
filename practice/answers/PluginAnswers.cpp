#include "practice/answers/Answers.h"

namespace practice {

namespace {

/// What "BHD Auto Start" does about "Start", a profile id and a user name. The user name counts for nothing: the
/// account is the one that is logged in on the link.
///
/// A start that works needs no message of its own, because its process shows in the list of processes. A refusal goes
/// to the plugin's counterpart, and it is the reply itself, which ends the wait for a raw request like any other.
Answer answerAutoStart(World& world, const Account& who, const QList<QByteArray>& words)
{
    if (words.size() < 3 || words[0] != "Start")
        return {};
    const int profile = words[1].toInt();
    const auto refused = [profile](const char* reason) {
        return Answer{"Plugin_qrvBHDGS_Refused_" + QByteArray::number(profile) + '_' + reason};
    };
    const bool may = who.administers(profile) && who.allows("Profiles", "Start Game from QRV") && who.mayUse(autoStart);
    if (!may)
        return refused("not allowed");
    return world.startGame(profile) ? Answer{} : refused("cannot be started");
}

} // namespace

Answer answerRawRequest(World& world, const Account& who, const Request& request)
{
    const QList<QByteArray> words = request.rest.split('_');
    if (words.size() > 1 && words[0] == "Plugin" && words[1] == "qrvBHDGS" && world.plugin(autoStart))
        return answerAutoStart(world, who, words.mid(2));
    return {};
}

} // namespace practice
