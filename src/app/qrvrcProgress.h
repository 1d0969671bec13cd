#pragma once

#include <QDialog>

class QLabel;
class QProgressBar;
class QTimer;

/// Shows how much of a large reply has arrived. One window, kept; it blocks the user's input but never the code that
/// feeds it, and it stays out of sight for replies that are there within a tenth of a second.
class qrvrcProgress : public QDialog
{
    Q_OBJECT

public:
    explicit qrvrcProgress(QWidget* parent);

    /// Opens the window, or moves it on.
    /// @param total     bytes that the reply's length prefix announced; unused when `update` is set
    /// @param received  bytes gathered so far, without the prefix; may exceed `total`
    /// @param update    false opens the window, true only moves its bar
    void DoProgress(qint32 total, qint32 received, bool update);
    /// The reply is complete, or will never be.
    void finish();

Q_SIGNALS:
    /// The user wants no more of it.
    void stopRequested();

protected:
    void reject() override;

private:
    void buildControls();
    void tick();

    QLabel* lblExpected = nullptr;
    QLabel* lblRecieved = nullptr;
    QLabel* lblPercent = nullptr;
    QProgressBar* pbData = nullptr;
    QTimer* tmrProgress = nullptr;
};
