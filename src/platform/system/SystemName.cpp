#include "platform/system/SystemName.h"

#include <QString>
#include <QSysInfo>

namespace {

/// The number behind "sp" in a product version such as "7sp1"; 0 without one.
std::int32_t servicePackOf(const QString& productVersion)
{
    const QString mark = QStringLiteral("sp");
    const qsizetype at = productVersion.lastIndexOf(mark, -1, Qt::CaseInsensitive);
    return at < 0 ? 0 : productVersion.mid(at + mark.size()).trimmed().toInt();
}

} // namespace

SystemName systemName()
{
    SystemName system{
        .name = QSysInfo::prettyProductName().toLatin1().toStdString(),
        .version = QSysInfo::kernelVersion().toLatin1().toStdString(),
    };
    if (QSysInfo::productType() == QLatin1String("windows"))
        system.servicePackMajor = servicePackOf(QSysInfo::productVersion());
    return system;
}
