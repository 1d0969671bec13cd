#include "practice/answers/Answers.h"

namespace practice {

using namespace Qt::StringLiterals;

namespace {

QDate dateOf(const QByteArray& text)
{
    return QDate::fromString(QString::fromLatin1(text), u"dd/MM/yyyy"_s);
}

QByteArray sizeText(qsizetype bytes)
{
    return bytes < 1024 ? QByteArray::number(bytes) + " B" : QByteArray::number((bytes + 512) / 1024) + " KB";
}

} // namespace

Answer answerGetFileList(World& world, const Account& who, const Request& request)
{
    const QList<QByteArray> fields = request.tail.split('|');
    if (fields.size() != 4 || !who.administers(fields[0].toInt()))
        return {};
    const QDate from = dateOf(fields[2]);
    const QDate to = dateOf(fields[3]);
    if (!from.isValid() || !to.isValid())
        return {};

    QList<QByteArray> entries;
    for (const LogFile& file : world.files) {
        if (file.profile != fields[0].toInt() || file.type != fields[1] || file.date < from || file.date > to)
            continue;
        QList<QByteArray> entry{file.name};
        if (file.type == "Backup Files")
            entry += file.gameType;
        entry += file.date.toString(u"dd/MM/yyyy"_s).toLatin1();
        entry += sizeText(file.content.size());
        entries += entry.join('|');
    }
    return {envelope(entries.join("||"))};
}

Answer answerGetRemFile(World& world, const Account& who, const Request& request)
{
    const QList<QByteArray> fields = request.tail.split('|');
    if (fields.size() != 2 || !who.administers(fields[0].toInt()))
        return {};
    const QByteArray path = QByteArray::fromBase64(fields[1]);
    for (const LogFile& file : world.files) {
        if (file.profile == fields[0].toInt() && file.path() == path)
            return {envelope(file.content)};
    }
    return {};
}

} // namespace practice
