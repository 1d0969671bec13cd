#pragma once

#include "client/Preferences.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QGroupBox;

/// The options that say how the program behaves while somebody works with it, in a box for each subject.
class PreferencesPage : public QWidget
{
public:
    explicit PreferencesPage(QWidget* parent = nullptr);

    void show(const Preferences& preferences);
    Preferences chosen() const;

private:
    QGroupBox* buildConnection();
    QGroupBox* buildRefresh();
    QGroupBox* buildAskBefore();

    QCheckBox* chkReconnect = nullptr;
    QComboBox* cboListRefresh = nullptr;
    QComboBox* cboPlayerRefresh = nullptr;
    QCheckBox* chkAskDetach = nullptr;
    QCheckBox* chkAskStop = nullptr;
    QCheckBox* chkAskKick = nullptr;
    QCheckBox* chkAskDeleteAccount = nullptr;
};
