#include "app/LicencesPage.h"

#include "base/Bounds.h"
#include "base/RuntimeError.h"
#include "platform/system/FileBytes.h"
#include "platform/system/PathText.h"
#include "ui/QuietComboBox.h"

#include <QComboBox>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace fs = std::filesystem;

namespace {

constexpr int gap = 8;
const QString ending = u".txt"_s;
const QString ownLicence = u"QRVRC"_s; // is shown first, and tells of the others

} // namespace

LicencesPage::LicencesPage(fs::path folder, QWidget* parent) : QWidget(parent), m_folder(std::move(folder))
{
    cboLicence = new QuietComboBox(this);
    cboLicence->setObjectName(u"cboLicence"_s);
    cboLicence->setAccessibleName(u"Licence of"_s);
    txtLicence = new QPlainTextEdit(this);
    txtLicence->setObjectName(u"txtLicence"_s);
    txtLicence->setAccessibleName(u"Licence"_s);
    txtLicence->setReadOnly(true);
    txtLicence->setTabChangesFocus(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(gap);
    layout->addWidget(cboLicence);
    layout->addWidget(txtLicence, 1);
    fill();
    connect(cboLicence, &QComboBox::currentTextChanged, this, &LicencesPage::showText);
    showText(cboLicence->currentText());
}

void LicencesPage::fill()
{
    QStringList names;
    std::error_code fault;
    for (const fs::directory_entry& entry : fs::directory_iterator(m_folder, fault)) {
        const QString name = textOf(entry.path().filename());
        if (name.endsWith(ending) && static_cast<std::size_t>(names.size()) < Bounds{}.licences)
            names += name.chopped(ending.size());
    }
    names.sort(Qt::CaseInsensitive);
    cboLicence->addItems(names);
    cboLicence->setCurrentIndex(std::max(0, cboLicence->findText(ownLicence)));
    cboLicence->setEnabled(!names.isEmpty());
}

void LicencesPage::showText(const QString& name)
{
    if (name.isEmpty()) {
        txtLicence->setPlainText(u"No licence texts lie beside this program: it was built, but not packed."_s);
        return;
    }
    try {
        const std::string text = readBytes(m_folder / pathOf(name + ending), Bounds{}.licenceBytes);
        txtLicence->setPlainText(QString::fromStdString(text));
    } catch (const RuntimeError& error) {
        txtLicence->setPlainText(
            u"This text cannot be read: %1"_s.arg(QString::fromLocal8Bit(error.description().c_str())));
    }
}
