#pragma once

#include <QWidget>

class QLabel;

namespace sx {

// "Παρακαλώ περιμένετε", an hourglass and the caller's message. It is
// on screen, painted, as soon as it is constructed, so a blocking operation
// may follow at once; destroying it takes it away.
class WaitWindow : public QWidget {
    Q_OBJECT
public:
    explicit WaitWindow(const QString& message, QWidget* parent = nullptr);

    void setMessage(const QString& message);
    [[nodiscard]] QString message() const;

    // The hourglass of Image1, drawn rather than shipped as a file.
    [[nodiscard]] static QPixmap hourglass(int size);

private:
    QLabel* m_message = nullptr;
    QString m_text;
};

} // namespace sx
