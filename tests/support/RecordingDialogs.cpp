#include "support/RecordingDialogs.h"

#include "diagnostics/report/TrappedError.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

void RecordingDialogs::open(const QString& title, const QString& text)
{
    boxes.append({title, text});
    if (whileOpen)
        whileOpen();
}

void RecordingDialogs::show(const QString& title, const QString& text)
{
    open(title, text);
}

bool RecordingDialogs::confirm(const QString& title, const QString& question)
{
    open(title, question);
    return answer;
}

void RecordingDialogs::showTrapped(const QString& title, const std::shared_ptr<TrappedError>& error)
{
    trapped.append(error);
    QObject::connect(error.get(), &TrappedError::changed, error.get(), [this, shown = error.get()] {
        if (shown->report() == TrappedError::Report::Delivered || shown->report() == TrappedError::Report::Failed)
            deliveries.append(shown->report() == TrappedError::Report::Delivered);
    });
    open(title, error->text());
}

qsizetype RecordingDialogs::count(const QString& title) const
{
    return std::count_if(boxes.begin(), boxes.end(), [&title](const Box& box) { return box.title == title; });
}

QString RecordingDialogs::onlyText() const
{
    if (boxes.size() == 1)
        return boxes.constFirst().text;
    QStringList shown;
    for (const Box& box : boxes)
        shown += box.title + u": "_s + box.text;
    return u"%1 boxes [%2]"_s.arg(boxes.size()).arg(shown.join(u" | "_s));
}
