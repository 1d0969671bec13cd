#include "practice/answers/Answers.h"

#include <QSet>

namespace practice {

namespace {

QByteArray encodedProfile(const Profile& profile)
{
    const QList<QByteArray> fields{
        QByteArray::number(profile.id),
        profile.name,
        profile.modPicture,
        profile.playersText(),
        profile.map.toBase64(),
        profile.gameType,
        profile.timerText(),
        QByteArray::number(profile.process),
        profile.statusText,
        QByteArray::number(static_cast<int>(profile.state)),
        profile.gameVersion,
    };
    return fields.join('|').toBase64();
}

/// The file's bytes in decimal, each followed by "/".
QByteArray spelledOut(const QByteArray& file)
{
    QByteArray text;
    text.reserve(file.size() * 4);
    for (const char byte : file)
        text += QByteArray::number(static_cast<unsigned char>(byte)) + '/';
    return text;
}

QByteArray flag(bool on)
{
    return on ? "1" : "0";
}

} // namespace

Answer answerGetProfiles(World& world, const Account& who, const Request& request)
{
    QSet<QByteArray> held;
    for (const QByteArray& name : QByteArray::fromBase64(request.afterUser(who.name)).split('|'))
        held += name.toLower();

    QList<QByteArray> elements{"Profiles"};
    QList<QByteArray> pictures;
    for (const Profile& profile : world.profiles) {
        elements += encodedProfile(profile);
        // A picture that several profiles share is sent once.
        const QByteArray key = profile.modPicture.toLower();
        pictures += held.contains(key) ? QByteArray() : spelledOut(world.pictures.value(profile.modPicture));
        held += key;
    }
    elements += pictures.join('|');
    return {elements.join('_')};
}

Answer answerGetProfile(World& world, const Account&, const Request& request)
{
    const Profile* profile = world.profile(request.tail.toInt());
    if (!profile)
        return {};
    const ProfileSettings& settings = profile->settings;
    const QList<QByteArray> values{
        profile->name,
        settings.scripts.join('|'),
        settings.hostName,
        flag(settings.connectOnStart),
        flag(settings.announceRanks),
        QByteArray::number(settings.leftLeaning),
        flag(settings.reportToMaster),
        flag(settings.antiPadding),
        settings.padMinutes,
        settings.padPlayers,
        {},
        settings.statsSystem,
        {},
        world.statsSystems.join('|'),
    };
    QByteArray body = "Profile";
    for (const QByteArray& value : values)
        body += '_' + value.toBase64();
    return {body};
}

Answer answerSetProfile(World& world, const Account& who, const Request& request)
{
    const qsizetype idEnd = request.tail.indexOf('_');
    Profile* profile = world.profile(request.tail.left(idEnd).toInt());
    const QList<QByteArray> encoded = QByteArray::fromBase64(request.tail.mid(idEnd + 1)).split('_');
    constexpr qsizetype fieldCount = 10;
    const bool allowed = profile && who.administers(profile->id) && who.allows("Profiles", "Edit Profiles");
    if (idEnd < 0 || !allowed || profile->isAttached() || encoded.size() != fieldCount)
        return {"False"};

    QList<QByteArray> fields;
    for (const QByteArray& field : encoded)
        fields += QByteArray::fromBase64(field);
    profile->settings = {
        .scripts = fields[0].isEmpty() ? QList<QByteArray>() : fields[0].split('|'),
        .hostName = fields[1],
        .connectOnStart = fields[2] == "1",
        .announceRanks = fields[4] == "1",
        .leftLeaning = fields[3].toInt(),
        .reportToMaster = fields[5] == "1",
        .antiPadding = fields[6] == "1",
        .padMinutes = fields[7],
        .padPlayers = fields[8],
        .statsSystem = fields[9],
    };
    return {"True"};
}

} // namespace practice
