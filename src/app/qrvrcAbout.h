#pragma once

#include "ui/WorkingWindow.h"

#include <string>

struct Client;

/// The program's version, the game titles that it supports, and credits.
class qrvrcAbout : public WorkingWindow
{
public:
    /// @param version  four parts
    qrvrcAbout(Client& client, const std::string& version, QWidget* parent);

    void Form_Activate() override;

private:
    Client& m_client;
};
