#pragma once

#include "practice/links/Framing.h"
#include "practice/world/World.h"

namespace practice {

/// What the tracker does about a request.
struct Answer
{
    QByteArray body;
    QByteArray kicked = {};  ///< account whose links are closed once the reply is out; empty for none
    QByteArray renamed = {}; ///< account that goes on as `newName`; empty for none
    QByteArray newName = {};
};

/// The reply to a login and the account that it admits; the account is empty when the login failed.
struct LoginAnswer
{
    QByteArray body;
    QByteArray account = {};
};

/// @param rest  user name, password and version joined by "_"; the first two may contain "_" themselves
LoginAnswer answerLogin(const World& world, const QByteArray& rest);

/// Answers any other request for an account that is logged in, and does to `world` what the request asks for, as far
/// as the account may. Unknown requests are acknowledged with an empty body.
Answer answerRequest(World& world, const Account& who, const Request& request);

// Rooms of answerRequest().
Answer answerGetStatus(World& world, const Account& who, const Request& request);
Answer answerGetProfiles(World& world, const Account& who, const Request& request);
Answer answerGetProfile(World& world, const Account& who, const Request& request);
Answer answerSetProfile(World& world, const Account& who, const Request& request);
Answer answerAttach(World& world, const Account& who, const Request& request);
Answer answerDetach(World& world, const Account& who, const Request& request);
Answer answerStopGame(World& world, const Account& who, const Request& request);
Answer answerDeleteProfile(World& world, const Account& who, const Request& request);
Answer answerGetProfileAdmins(World& world, const Account& who, const Request& request);
Answer answerGetProfileAdminPrivis(World& world, const Account& who, const Request& request);
Answer answerAddProfileAdmin(World& world, const Account& who, const Request& request);
Answer answerModifyProfileAdmin(World& world, const Account& who, const Request& request);
Answer answerDeleteProfileAdmin(World& world, const Account& who, const Request& request);
Answer answerKickProfileAdmin(World& world, const Account& who, const Request& request);
Answer answerGetPlayerStats(World& world, const Account& who, const Request& request);
Answer answerGetFileList(World& world, const Account& who, const Request& request);
Answer answerGetRemFile(World& world, const Account& who, const Request& request);
/// A raw request: a message to one of the tracker's plugins, or nothing that the tracker knows. The reply ends the
/// client's wait whatever comes of it: with an empty body, which no part of the client takes for its own, or with a
/// body that begins with "Plugin", which the client hands to its counterpart of the plugin.
Answer answerRawRequest(World& world, const Account& who, const Request& request);

} // namespace practice
