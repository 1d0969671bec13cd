#pragma once

class ImageButton;
class PictureStore;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QString;
class QWidget;

/// What the login window shows, and how it is laid out. The page owns all of it.
struct LoginControls
{
    LoginControls(QWidget& page, PictureStore& pictures);

    QGroupBox* fmeConnect;
    QComboBox* cboProfile;
    QLineEdit* txtProfile;
    QLineEdit* txtHost;
    QLineEdit* txtPort;
    QLineEdit* txtUser;
    QLineEdit* txtPass;
    QCheckBox* chkRemember;
    ImageButton* cmdConnect;
    ImageButton* cmdDisconnect;
    ImageButton* cmdDelete;
    QGroupBox* fmeStatus;
    QLabel* lblStatus;
    QLabel* lblEmblem;

private:
    QLineEdit* newField(const QString& name, const QString& meaning);
    void layOut(QWidget& page);
    void layOutConnect();
};
