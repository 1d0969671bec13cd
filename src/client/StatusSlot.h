#pragma once

#include <QObject>

/// Where it is said what has come of something, for a while and beside the user's work: nothing is asked of him.
class StatusSlot : public QObject
{
    Q_OBJECT

public:
    /// @param text  one sentence; what does not fit is cut off
    void tell(const QString& text) { Q_EMIT told(text); }

Q_SIGNALS:
    void told(const QString& text);
};
