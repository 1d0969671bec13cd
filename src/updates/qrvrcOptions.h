#pragma once

#include "ui/WorkingWindow.h"

class ImageButton;
class PreferencesPage;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QSpinBox;
class QTabBar;
class UpdateOptions;
struct Client;
struct OptionValues;

/// The settings: where updates come from and whether they are looked for, and the program's own.
class qrvrcOptions : public WorkingWindow
{
    Q_OBJECT

public:
    /// Both outlive the window.
    qrvrcOptions(Client& client, UpdateOptions& options, QWidget* parent);

    QString helpSection() const override { return QStringLiteral("Options"); }

private:
    QGroupBox* buildUpdates();
    QGroupBox* buildProgram();
    void wireSignals();
    void show(const OptionValues& values);
    void locationChosen();
    OptionValues typed() const;
    void complainOf(QLineEdit* field, const QString& fault);
    void save();

    Client& m_client;
    UpdateOptions& m_options;
    QComboBox* cboUpdateUrl = nullptr;
    QLabel* Label31 = nullptr;
    QLineEdit* txtUpdatePath = nullptr;
    QCheckBox* chkCheckForUpdates = nullptr;
    QSpinBox* txtReplyTimeout = nullptr;
    QComboBox* cboCodePage = nullptr;
    QComboBox* cboErrorReports = nullptr;
    QCheckBox* chkKeyring = nullptr;
    QLineEdit* txtMakerHost = nullptr;
    QLineEdit* txtUpdateKey = nullptr;
    PreferencesPage* m_use = nullptr;
    QTabBar* tsOptions = nullptr;
    ImageButton* cmdSave = nullptr;
};
