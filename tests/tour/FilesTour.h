#pragma once

#include "tour/Act.h"

namespace tour {

/// The way of an administrator who looks for what happened on his host: lists of logs and backups, a log and an archive
/// in the text viewer, and what can go wrong on the way.
class FilesTour : public Act
{
public:
    /// @param frame     not started yet; outlives the tour
    /// @param pictures  folder that exists
    FilesTour(qrvrcMain& frame, const QDir& pictures);

private:
    void signIn();
    void openRoom();
    void chooseDates(int daysBack, int daysLong);
    void chooseType(const QString& type);
    void getFiles(const QString& what, int rows);
    void view(const QString& what, int row, const QByteArray& beginning);
    void closeViewer();
    void meetTrouble();
};

} // namespace tour
