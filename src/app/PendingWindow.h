#pragma once

#include "ui/WorkingWindow.h"

struct Client;

/// Stands in for a section that this version has no window for, and says so.
class PendingWindow : public WorkingWindow
{
public:
    PendingWindow(Client& client, const QString& name, const QString& title, const QString& helpSection,
                  QWidget* parent);

    void Form_Activate() override;

private:
    Client& m_client;
    QString m_helpSection;
};
