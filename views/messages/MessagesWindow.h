#pragma once

#include "model/QueryHelpers.h"
#include "ui/PrintPreview.h"
#include "ui/ViewWindow.h"

class QGroupBox;
class QPlainTextEdit;
class QPushButton;

namespace sx {

// The new messages or the message archive of every unit, as one
// read-only text. Opens on the new messages; the text is rebuilt only on
// opening, by the two list buttons and before printing.
class MessagesWindow : public ViewWindow {
    Q_OBJECT
public:
    explicit MessagesWindow(AppContext& ctx);

    // The unit list only travels with navigation; the text is for every unit.
    void unitSelected(int index) override;
    // Builds the shown list again when it could not be read.
    void refillAfterOutage() override;

    // Builds the list and sets it into the text box in one step. false when a
    // query failed (reported); the box then holds what was built until then.
    bool showList(MessageKind kind);

    // The list named by the frame caption, as the print item reads it.
    [[nodiscard]] MessageKind shownList() const;
    // The text as built, lines joined by CR LF.
    [[nodiscard]] const QString& messageText() const { return m_text; }

    [[nodiscard]] QPlainTextEdit* textBox() const { return m_textBox; }
    [[nodiscard]] QGroupBox* textFrame() const { return m_frame; }
    [[nodiscard]] QPushButton* newButton() const { return m_newButton; }
    [[nodiscard]] QPushButton* archiveButton() const { return m_archiveButton; }

    // Printmsgs.
    void printList(ReportOutput output = ReportOutput::Print);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void buildMenus();
    void placeTextFrame();
    void setText(const QString& text, bool centred);

    QGroupBox* m_frame = nullptr;
    QPlainTextEdit* m_textBox = nullptr;
    QPushButton* m_newButton = nullptr;
    QPushButton* m_archiveButton = nullptr;
    QString m_text;
};

} // namespace sx
