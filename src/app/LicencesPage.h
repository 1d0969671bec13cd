#pragma once

#include <QWidget>

#include <filesystem>

class QComboBox;
class QPlainTextEdit;

/// The licences of everything that the program holds, as they lie beside it: one text a file, named after what it is
/// of.
class LicencesPage : public QWidget
{
    Q_OBJECT

public:
    /// @param folder  need not exist
    explicit LicencesPage(std::filesystem::path folder, QWidget* parent = nullptr);

private:
    void fill();
    void showText(const QString& name);

    std::filesystem::path m_folder;
    QComboBox* cboLicence = nullptr;
    QPlainTextEdit* txtLicence = nullptr;
};
