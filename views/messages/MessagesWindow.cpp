#include "views/messages/MessagesWindow.h"

#include "model/messages/MessagesBuilder.h"
#include "reports/Colors.h"
#include "reports/Twips.h"
#include "ui/DbCall.h"
#include "ui/NavigationFrame.h"
#include "ui/QueryFailureReporter.h"
#include "views/messages/MessagesPrint.h"

#include <QGroupBox>
#include <QGuiApplication>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextDocument>
#include <QTextOption>

using namespace Qt::StringLiterals;

namespace sx {

namespace {

// Geometry in twips.
constexpr int kWindowWidth = 15255;
constexpr int kWindowHeight = 10695;
constexpr int kMinWidth = 9495;
constexpr int kMinHeight = 6000;
constexpr int kMargin = 120;
constexpr int kFrameTop = 2775;
constexpr int kFrameInnerTop = 360;

QPushButton* makeListButton(const QString& name, const QString& caption, int left, QWidget* parent)
{
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    b->setFont(uiFont(9));
    placeAt(b, left, 1800, 2415, 735);
    setButtonColor(b, colors::kLightGrey);
    return b;
}

} // namespace

MessagesWindow::MessagesWindow(AppContext& ctx) : ViewWindow(ctx, ViewId::Messages, u"Μηνύματα"_s)
{
    setObjectName(u"Msgsfrm"_s);
    setFont(uiFont(9.75));
    QWidget* central = centralWidget();
    placeAt(navigation(), kMargin, kMargin, 5895, 2535);

    m_newButton = makeListButton(u"Command4"_s, u"Νέα μηνύματα"_s, 6240, central);
    m_archiveButton = makeListButton(u"Command5"_s, u"Αρχείο μηνυμάτων"_s, 8775, central);
    connect(m_newButton, &QPushButton::clicked, this, [this] { showList(MessageKind::New); });
    connect(m_archiveButton, &QPushButton::clicked, this,
            [this] { showList(MessageKind::Archived); });

    m_frame = new QGroupBox(listCaption(MessageKind::New), central);
    m_frame->setObjectName(u"Frame2"_s);
    m_frame->setFont(uiFont(11.25));

    m_textBox = new QPlainTextEdit(m_frame);
    m_textBox->setObjectName(u"Text1"_s);
    m_textBox->setFont(uiFont(9.75));
    m_textBox->setReadOnly(true);
    m_textBox->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    m_textBox->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_textBox->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    m_textBox->setUndoRedoEnabled(false);
    QPalette p = m_textBox->palette();
    p.setColor(QPalette::Base, colors::kLightGrey);
    p.setColor(QPalette::Text, Qt::black);
    m_textBox->setPalette(p);

    buildMenus();
    central->setMinimumSize(twips(kMinWidth, this), twips(kMinHeight, this));
    resize(twips(kWindowWidth, this), twips(kWindowHeight, this) + menuBar()->sizeHint().height());
    placeTextFrame();

    showList(MessageKind::New);
    updateNewMessagesIndicator();
}

void MessagesWindow::buildMenus()
{
    QMenu* manage = menuBar()->addMenu(u"Διαχείριση"_s);
    manage->setObjectName(u"Diahirisi"_s);
    QAction* print = manage->addAction(u"Εκτύπωση μηνυμάτων"_s);
    print->setObjectName(u"Printmsgs"_s);
    connect(print, &QAction::triggered, this, [this] { printList(); });
    QAction* separator = manage->addSeparator();
    separator->setObjectName(u"l1"_s);
    addExitItem(manage);
    manage->addSeparator();
    QAction* preview = manage->addAction(u"Προεπισκόπηση μηνυμάτων"_s);
    preview->setObjectName(u"Previewmsgs"_s);
    connect(preview, &QAction::triggered, this, [this] { printList(ReportOutput::Preview); });
}

void MessagesWindow::unitSelected(int) {}

void MessagesWindow::refillAfterOutage()
{
    const AppContext& ctx = context();
    const bool failed = ctx.failures && ctx.failures->failedIn(this);
    ViewWindow::refillAfterOutage();
    if (isVisible() && failed)
        showList(shownList());
}

MessageKind MessagesWindow::shownList() const
{
    return m_frame->title() == listCaption(MessageKind::New) ? MessageKind::New
                                                             : MessageKind::Archived;
}

bool MessagesWindow::showList(MessageKind kind)
{
    AppContext& ctx = context();
    m_newButton->setEnabled(kind != MessageKind::New);
    m_archiveButton->setEnabled(kind == MessageKind::New);
    m_frame->setTitle(listCaption(kind));

    MessagesText built;
    if (ctx.failures && !ctx.failures->ensureConnection(FailureOrigin::User)) {
        built.error = {kProviderErrorNumber, u"The connection to the database is lost."_s,
                       DbFailureCause::Unreachable};
    } else {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        built = dbCall(ctx, this, [kind](Database& db) { return buildMessagesText(db, kind); });
        QGuiApplication::restoreOverrideCursor();
    }
    // Also on a failure: never leave the other list's text under this caption.
    setText(built.text, built.centred);
    if (built.error.isError()) {
        if (ctx.failures)
            ctx.failures->reportAction(built.error, this);
        return false;
    }
    if (ctx.failures)
        ctx.failures->clear();
    return true;
}

void MessagesWindow::setText(const QString& text, bool centred)
{
    m_text = text;
    QString shown = text;
    shown.replace(u"\r\n"_s, u"\n"_s);
    QTextDocument* doc = m_textBox->document();
    const Qt::Alignment alignment = centred ? Qt::AlignHCenter : Qt::AlignLeft;
    if (doc->defaultTextOption().alignment() != alignment) {
        // A new option lays out every block again: change it while the box is empty.
        m_textBox->clear();
        QTextOption option = doc->defaultTextOption();
        option.setAlignment(alignment);
        doc->setDefaultTextOption(option);
    }
    m_textBox->setPlainText(shown);
}

void MessagesWindow::printList(ReportOutput output)
{
    const MessageKind kind = shownList();
    printMessages(
        context(), this, kind,
        [this, kind]() -> std::optional<QString> {
            if (!showList(kind))
                return std::nullopt;
            return m_text;
        },
        output);
}

void MessagesWindow::resizeEvent(QResizeEvent* event)
{
    ViewWindow::resizeEvent(event);
    placeTextFrame();
}

void MessagesWindow::placeTextFrame()
{
    if (!m_frame)
        return;
    const QWidget* central = centralWidget();
    const int margin = twips(kMargin, this);
    const int top = twips(kFrameTop, this);
    const int width = std::max(central->width() - 2 * margin, 0);
    const int height = std::max(central->height() - top - margin, 0);
    m_frame->setGeometry(margin, top, width, height);
    const int innerTop = twips(kFrameInnerTop, this);
    m_textBox->setGeometry(margin, innerTop, std::max(width - 2 * margin, 0),
                           std::max(height - innerTop - margin, 0));
}

} // namespace sx
