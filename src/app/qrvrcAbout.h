#pragma once

#include "ui/WorkingWindow.h"

#include <string>

struct Client;

/// The program's version, the game titles that it supports, and credits.
class qrvrcAbout : public WorkingWindow
{
    Q_OBJECT

public:
    /// @param version  four parts
    qrvrcAbout(Client& client, const std::string& version, QWidget* parent);

    QString helpSection() const override { return QStringLiteral("About"); }

private:
    Client& m_client;
};
