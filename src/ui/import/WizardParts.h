#pragma once

#include <QLabel>
#include <QPushButton>

namespace nv {

// What the wizard's pages are made of; tests and scripts find each by its name.

/// Shows texts as they stand, since they may be paths of evidence.
QLabel *newWizardLabel(const char *name);
QPushButton *newWizardButton(const char *name, const QString &text);

} // namespace nv
