#pragma once

class ProfilePictures;
class QGroupBox;
class QWidget;

/// The frame that says what the status pictures of the profile list mean.
QGroupBox* newLegend(ProfilePictures& pictures, QWidget* parent);
