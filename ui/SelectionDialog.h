#pragma once

#include "ui/DialogService.h"

#include <QDialog>

class QComboBox;
class QLabel;

namespace sx {

// One or two drop-down lists under the caller's instruction.
// The second list is shown only when the caller gives one.
class SelectionDialog : public QDialog {
    Q_OBJECT
public:
    SelectionDialog(const QString& caption, const QString& label, const QStringList& first,
                    const QStringList& second, QWidget* parent = nullptr);

    // The chosen indexes; second is -1 when the second list is hidden or empty.
    [[nodiscard]] DialogService::Selection selection() const;

    [[nodiscard]] static std::optional<DialogService::Selection>
    ask(QWidget* parent, const QString& caption, const QString& label, const QStringList& first,
        const QStringList& second);

private:
    QComboBox* m_first = nullptr;
    QComboBox* m_second = nullptr;
};

} // namespace sx
