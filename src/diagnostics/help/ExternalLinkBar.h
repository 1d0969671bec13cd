#pragma once

#include <QFrame>
#include <QUrl>

class QLabel;
class QToolButton;

/// Shows the address of a link that leads out of the help book. Nothing is fetched: a web address goes to the user's
/// browser when the user says so. Hidden until a link is offered.
class ExternalLinkBar : public QFrame
{
    Q_OBJECT

public:
    ExternalLinkBar(const QString& name, QWidget* parent);

    void offer(const QUrl& link);

private:
    void open();

    QUrl m_link; ///< the one that is shown
    QLabel* lblExternal;
    QToolButton* cmdOpenExternal;
};
