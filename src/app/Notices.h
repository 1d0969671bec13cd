#pragma once

#include <QObject>

#include <vector>

class QWidget;
class StatusLine;
class SupportDesk;
struct ClientCore;
struct LeftOutPlugin;

/// Tells the user what comes by itself: faults of the link in boxes, the rest in the status line beside his work.
class Notices : public QObject
{
public:
    /// All outlive this.
    /// @param frame  alerted in the task bar
    Notices(ClientCore& core, const SupportDesk& support, StatusLine& statusLine, QWidget& frame);

private:
    void tellOfLink();
    void tellOfArrived(const std::vector<LeftOutPlugin>& files);
    void tellOfOperator(const SupportDesk& support, QWidget& frame);
    QString operatorsNote() const;

    ClientCore& m_core;
    StatusLine& m_statusLine;
};
