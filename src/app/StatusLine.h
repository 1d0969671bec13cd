#pragma once

#include "app/StatusTexts.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class ElidedLabel;
class QPushButton;
class QStatusBar;
class StatusLabel;
struct ClientCore;

/// The left of the status bar: how the connection stands, what the profile list shows and how old that is; in its place
/// for a while what has just happened; and beside a countdown to the next try the buttons that end it. It counts the
/// seconds only while the frame can be seen.
class StatusLine : public QObject
{
    Q_OBJECT

public:
    /// Both outlive the line.
    StatusLine(QStatusBar& statusBar, ClientCore& core, QObject* parent);

    /// Shows a sentence for a while.
    void tell(const QString& text);
    /// Shows one until the next note; an empty text takes it away.
    void note(const QString& text);
    /// Takes a note away, if it is still the one shown.
    void withdraw(const QString& text);
    void followList(const ListNews& news);

Q_SIGNALS:
    /// The connection stands differently; not told of the seconds that pass.
    void stateTold(const QString& text);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void wireLink();
    void showSoon();
    void showNow();
    void showMessage();
    void showTries();
    void followFrame();
    LinkFacts linkFacts() const;
    ListFacts listFacts() const;
    ListRest listRest() const;
    bool isFrameSeen() const;

    QStatusBar& m_bar;
    ClientCore& m_core;
    StatusLabel* lblConnection;
    ElidedLabel* lblNote;
    QPushButton* cmdTryNow = nullptr; ///< from the first countdown on
    QPushButton* cmdStopTrying = nullptr;
    QString m_message;
    QString m_note;
    QString m_announced;
    ListNews m_news;
    QElapsedTimer m_listAge;
    std::optional<QTime> m_lastAnswer;
    QTimer m_second{this};
    QTimer m_soon;
    QTimer m_messageEnd{this};
};
