#pragma once

#include <QDialog>

#include <optional>

class QLabel;
class QLineEdit;

namespace sx {

// The caller's question, a field masked with "*", OK and "Άκυρο".
// Closing it by its close box counts as Άκυρο.
class PasswordDialog : public QDialog {
    Q_OBJECT
public:
    PasswordDialog(const QString& title, const QString& label, QWidget* parent = nullptr);

    [[nodiscard]] QString text() const;

    // Shows it modally: the typed text after OK, nothing after Άκυρο or the close box.
    [[nodiscard]] static std::optional<QString> ask(QWidget* parent, const QString& title,
                                                    const QString& label);

private:
    QLineEdit* m_field = nullptr;
};

} // namespace sx
