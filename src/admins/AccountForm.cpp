#include "admins/AccountForm.h"

#include "admins/PrivilegeGrid.h"
#include "platform/system/CodePage.h"
#include "ui/ImageButton.h"
#include "ui/QuietComboBox.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr QMargins insets(7, 2, 7, 7); // from the frame to what it holds
constexpr int columnGap = 10;
constexpr int rowGap = 8;
constexpr int captionGap = 2;
constexpr int fieldHeight = 26;
constexpr int buttonWidth = 130;
constexpr QSize noteSize(180, 42); // as wide as the fields, three lines

/// A control below its caption.
QVBoxLayout* captioned(QWidget* control, const QString& name, const QString& text)
{
    auto* label = new QLabel(text);
    label->setObjectName(name);
    label->setBuddy(control);
    auto* layout = new QVBoxLayout;
    layout->setSpacing(captionGap);
    layout->addWidget(label);
    layout->addWidget(control);
    return layout;
}

} // namespace

AccountForm::AccountForm(const CodePage& codePage, PictureStore& pictures, QWidget* parent)
    : QGroupBox(u"Add User"_s, parent),
      m_codePage(codePage)
{
    setObjectName(u"fmeAddUser"_s);
    buildFields();
    buildSaving(pictures);
    layOut();
    wireSignals();
    offer({});
    showNew();
}

void AccountForm::buildFields()
{
    cboUser = new QuietComboBox(this);
    cboUser->setObjectName(u"cboUser"_s);
    cboUser->setAccessibleName(u"User to add or modify"_s);
    // As wide as it is laid out, whatever names come from the host.
    cboUser->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    txtUser = new QLineEdit(this);
    txtUser->setObjectName(u"txtUser"_s);
    txtPass = new QLineEdit(this);
    txtPass->setObjectName(u"txtPass"_s);
    lstSections = new PrivilegeGrid(u"lstSections"_s, m_codePage, this);
    lstSections->setAccessibleName(u"Privileges"_s);
}

void AccountForm::buildSaving(PictureStore& pictures)
{
    cmdAddUser = new ImageButton(u"cmdAddUser"_s, u"Add User"_s, pictures, this);
    cmdModify = new ImageButton(u"cmdModify"_s, u"Modify User"_s, pictures, this);
    lblNote = new QLabel(this);
    lblNote->setObjectName(u"lblNote"_s);
    lblNote->setTextFormat(Qt::PlainText);
    lblNote->setWordWrap(true);
    lblNote->setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

void AccountForm::layOut()
{
    auto* buttons = new QGridLayout; // one of the two is shown
    for (const ImageButton* button : {cmdAddUser, cmdModify}) {
        button->face()->setFixedWidth(buttonWidth);
        buttons->addWidget(button->face(), 0, 0, Qt::AlignLeft);
    }
    for (QWidget* field : std::initializer_list<QWidget*>{cboUser, txtUser, txtPass})
        field->setFixedHeight(fieldHeight);
    lblNote->setFixedSize(noteSize); // whatever it tells
    auto* fields = new QVBoxLayout;
    fields->setSpacing(rowGap);
    fields->addWidget(cboUser);
    fields->addLayout(captioned(txtUser, u"lblUser"_s, u"Username:"_s));
    fields->addLayout(captioned(txtPass, u"lblPass"_s, u"Password:"_s));
    fields->addLayout(buttons);
    fields->addWidget(lblNote);
    auto* columns = new QHBoxLayout(this);
    columns->setContentsMargins(insets);
    columns->setSpacing(columnGap);
    columns->addLayout(fields);
    columns->addLayout(captioned(lstSections, u"lblSections"_s, u"Privileges"_s), 1);
}

void AccountForm::wireSignals()
{
    connect(cboUser, &QComboBox::currentIndexChanged, this, &AccountForm::chooseName);
    connect(cboUser, &QComboBox::activated, this, &AccountForm::accountChosen);
    for (QLineEdit* field : {txtUser, txtPass})
        connect(field, &QLineEdit::returnPressed, this, [this] { (m_account ? cmdModify : cmdAddUser)->click(); });
    for (ImageButton* button : {cmdAddUser, cmdModify})
        connect(button, &ImageButton::clicked, this, &AccountForm::saveWanted);
}

void AccountForm::offer(const std::vector<AdminAccount>& accounts)
{
    m_offered = accounts;
    const auto sameName = [this](const AdminAccount& account) { return account.name == m_account->name; };
    if (m_account && std::none_of(m_offered.begin(), m_offered.end(), sameName))
        m_offered.push_back(*m_account);
    const QSignalBlocker quiet(cboUser);
    cboUser->clear();
    QStringList names{m_codePage.toText(newAdmin)};
    for (const AdminAccount& account : m_offered)
        names += m_codePage.toText(account.name);
    cboUser->addItems(names);
    if (m_account) {
        const auto chosen = std::find_if(m_offered.begin(), m_offered.end(), sameName);
        cboUser->setCurrentIndex(1 + static_cast<int>(chosen - m_offered.begin()));
    }
}

void AccountForm::chooseName(int index)
{
    const auto at = static_cast<std::size_t>(std::max(index, 0));
    showAccount(at == 0 || at > m_offered.size() ? std::nullopt : std::optional(m_offered[at - 1]));
    Q_EMIT accountChosen();
}

/// The boxes of the account before it go at once.
void AccountForm::showAccount(std::optional<AdminAccount> account)
{
    m_account = std::move(account);
    const AdminAccount kept = m_account.value_or(AdminAccount());
    txtUser->setText(m_codePage.toText(kept.name));
    txtPass->setText(m_codePage.toText(kept.password));
    cmdAddUser->setVisible(!m_account);
    cmdModify->setVisible(m_account.has_value());
    lstSections->setEmptyText(u"The privileges have not arrived."_s);
    lstSections->showReceived({});
    m_isWhole = false;
}

void AccountForm::showNew()
{
    showAccount({});
    if (m_template)
        takeChecklist(std::string(newAdmin), *m_template, true);
    const QSignalBlocker quiet(cboUser);
    cboUser->setCurrentIndex(0);
}

void AccountForm::restore(const AccountDraft& draft)
{
    showAccount(draft.account);
    txtUser->setText(draft.name);
    txtPass->setText(draft.password);
    lstSections->showEdited(draft.received, draft.edited);
    m_isWhole = draft.isWhole;
    offer(m_offered);
}

void AccountForm::takeChecklist(const std::string& account, Checklist rows, bool isWhole)
{
    if (account == newAdmin && isWhole)
        m_template = rows;
    if (account != accountName() || (m_isWhole && !isWhole))
        return;
    lstSections->setEmptyText(isWhole ? u"The tracker knows no privileges."_s
                                      : u"The tracker's answer could not be read."_s);
    lstSections->showReceivedKeepingEdits(std::move(rows));
    m_isWhole = isWhole;
}

void AccountForm::takeKeyboard()
{
    cboUser->setFocus();
}

void AccountForm::note(const QString& text)
{
    lblNote->setText(text);
}

void AccountForm::enableSaving(bool add, bool modify)
{
    cmdAddUser->setEnabled(add);
    cmdModify->setEnabled(modify);
}

std::string AccountForm::accountName() const
{
    return m_account ? m_account->name : std::string(newAdmin);
}

bool AccountForm::isEdited() const
{
    const AccountFields typed = fields();
    const AdminAccount kept = m_account.value_or(AdminAccount());
    return typed.name != kept.name || typed.password != kept.password || lstSections->isEdited();
}

AccountDraft AccountForm::draft() const
{
    return {m_account, txtUser->text(), txtPass->text(), lstSections->received(), lstSections->checklist(), m_isWhole};
}

AccountFields AccountForm::fields() const
{
    AccountFields typed{m_codePage.toBytes(txtUser->text()), m_codePage.toBytes(txtPass->text()), {}};
    if (m_account)
        typed.currentName = m_account->name;
    return typed;
}

std::optional<QString> AccountForm::fault() const
{
    if (const std::optional<std::string_view> fault = firstFault(fields()))
        return m_codePage.toText(*fault);
    const QString unsendable = m_codePage.sendFault(txtUser->text() + txtPass->text());
    return unsendable.isEmpty() ? std::nullopt : std::optional(unsendable);
}

const Checklist& AccountForm::checklist() const
{
    return lstSections->checklist();
}
