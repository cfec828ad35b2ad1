#include "ui/WaitWindow.h"

#include "reports/Twips.h"
#include "ui/AppContext.h"

#include <QCoreApplication>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>

using namespace Qt::StringLiterals;

namespace sx {

WaitWindow::WaitWindow(const QString& message, QWidget* parent)
    : QWidget(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint)
{
    setObjectName(u"Waitfrm"_s);
    setWindowTitle(appTitle());
    setFont(uiFont(9.75));
    setFixedSize(twips(6360, this), twips(1560, this));

    auto* image = new QLabel(this);
    image->setObjectName(u"Image1"_s);
    placeAt(image, 240, 300, 720, 720);
    image->setPixmap(hourglass(twips(720, this)));

    auto* please = new QLabel(u"Παρακαλώ περιμένετε"_s, this);
    please->setObjectName(u"Label1"_s);
    placeAt(please, 1200, 180, 4920, 300);

    m_message = new QLabel(this);
    m_message->setObjectName(u"Label2"_s);
    m_message->setTextFormat(Qt::PlainText);
    m_message->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_message->setWordWrap(true);
    placeAt(m_message, 1200, 600, 4920, 780);
    setMessage(message);

    show();
    // Painted now: the caller blocks right after this.
    QCoreApplication::processEvents();
    repaint();
}

void WaitWindow::setMessage(const QString& message)
{
    // QLabel breaks lines at LF only.
    m_text = message;
    m_message->setText(QString(message).replace(u"\r\n"_s, u"\n"_s));
    if (isVisible())
        m_message->repaint();
}

QString WaitWindow::message() const
{
    return m_text;
}

QPixmap WaitWindow::hourglass(int size)
{
    QPixmap pix(size, size);
    pix.fill(Qt::transparent);
    QPainter p(&pix);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal s = size;
    const qreal m = s * 0.18; // side margin of the glass
    const QPen frame(QColor(64, 64, 64), qMax<qreal>(1.0, s / 24));

    // Top and bottom plates.
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(128, 80, 32));
    p.drawRect(QRectF(m * 0.6, s * 0.06, s - 1.2 * m, s * 0.08));
    p.drawRect(QRectF(m * 0.6, s * 0.86, s - 1.2 * m, s * 0.08));

    // The glass: two bulbs meeting at the waist.
    QPainterPath glass;
    glass.moveTo(m, s * 0.14);
    glass.lineTo(s - m, s * 0.14);
    glass.cubicTo(s - m, s * 0.38, s * 0.56, s * 0.44, s * 0.56, s * 0.5);
    glass.cubicTo(s * 0.56, s * 0.56, s - m, s * 0.62, s - m, s * 0.86);
    glass.lineTo(m, s * 0.86);
    glass.cubicTo(m, s * 0.62, s * 0.44, s * 0.56, s * 0.44, s * 0.5);
    glass.cubicTo(s * 0.44, s * 0.44, m, s * 0.38, m, s * 0.14);
    p.setBrush(QColor(235, 242, 250));
    p.setPen(frame);
    p.drawPath(glass);

    // Sand: what is left on top, the heap below and the thin stream between.
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(214, 170, 60));
    QPainterPath top;
    top.moveTo(s * 0.3, s * 0.3);
    top.lineTo(s * 0.7, s * 0.3);
    top.lineTo(s * 0.5, s * 0.47);
    top.closeSubpath();
    p.drawPath(top);
    QPainterPath heap;
    heap.moveTo(m + s * 0.04, s * 0.84);
    heap.lineTo(s - m - s * 0.04, s * 0.84);
    heap.lineTo(s * 0.5, s * 0.68);
    heap.closeSubpath();
    p.drawPath(heap);
    p.drawRect(QRectF(s * 0.49, s * 0.47, s * 0.02, s * 0.22));
    return pix;
}

} // namespace sx
