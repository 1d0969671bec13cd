#include "profiles/list/ProfileLegend.h"

#include "profiles/list/ProfilePictures.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>

#include <array>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr QMargins margins(13, 5, 13, 5);
constexpr int spacing = 6;
constexpr int labelWidth = 120;

struct Entry
{
    const char16_t* picture; ///< name of the control with the picture
    const char16_t* label;
    std::int32_t status;
};

constexpr std::array entries{
    Entry{u"ImgNA", u"lblNA", 5}, Entry{u"ImgNH", u"lblNH", 0}, Entry{u"ImgLM", u"lblLM", 1},
    Entry{u"ImgHM", u"lblHM", 2}, Entry{u"imgSM", u"lblSM", 4},
};

} // namespace

QGroupBox* newLegend(ProfilePictures& pictures, QWidget* parent)
{
    auto* const legend = new QGroupBox(u"Legend"_s, parent);
    legend->setObjectName(u"fmeLegend"_s);
    auto* row = new QGridLayout(legend);
    row->setContentsMargins(margins);
    row->setHorizontalSpacing(spacing);
    int column = 0;
    for (const Entry& entry : entries) {
        auto* picture = new QLabel(legend);
        picture->setObjectName(QString::fromUtf16(entry.picture));
        picture->setPixmap(pictures.statusPicture(entry.status, parent->devicePixelRatioF()));
        auto* label = new QLabel(ProfilePictures::statusMeaning(entry.status), legend);
        label->setObjectName(QString::fromUtf16(entry.label));
        if (column > 0)
            row->setColumnMinimumWidth(column - 1, labelWidth); // of the entry before
        row->addWidget(picture, 0, column++);
        row->addWidget(label, 0, column++);
    }
    row->setColumnStretch(column, 1);
    return legend;
}
