#pragma once

#include "ui/options/OptionsTab.h"

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QSpinBox;

namespace nv {

/// What the gallery shows.
class GalleryOptionsTab final : public OptionsTab {
    Q_OBJECT

  public:
    GalleryOptionsTab(const Options &start, SettingBoxes &settings);

    void putInto(Options &options) const override;

  signals:
    /// It is no longer what is ticked here.
    void galleryOutdated();

  private:
    QComboBox *m_perPage = nullptr;
    QComboBox *m_timeout = nullptr;
};

/// The shapes of the pictures that the gallery shows.
class PardTab final : public OptionsTab {
    Q_OBJECT

  public:
    explicit PardTab(const Options &start);

    void putInto(Options &options) const override;

  private:
    void showPard();

    QCheckBox *m_pard = nullptr;
    QSpinBox *m_from = nullptr;
    QSpinBox *m_to = nullptr;
    QLabel *m_pardText = nullptr;
};

/// How large thumbnails are drawn.
class ThumbnailSizesTab final : public OptionsTab {
    Q_OBJECT

  public:
    explicit ThumbnailSizesTab(const Options &start);

    void putInto(Options &options) const override;

  private:
    QButtonGroup *addSizes(QFormLayout &form, const QString &label, const char *name, int width);

    QButtonGroup *m_viewerSizes = nullptr;
    QButtonGroup *m_reportSizes = nullptr;
};

} // namespace nv
