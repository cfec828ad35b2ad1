# The application frame: start-up, settings, the connection's health and the
# dialogs and printing steps every view shares.
target_sources(sxgui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/AppActions.h ${CMAKE_CURRENT_LIST_DIR}/AppActions.cpp
    ${CMAKE_CURRENT_LIST_DIR}/AppContext.h
    ${CMAKE_CURRENT_LIST_DIR}/ChoosePrinter.h ${CMAKE_CURRENT_LIST_DIR}/ChoosePrinter.cpp
    ${CMAKE_CURRENT_LIST_DIR}/Colors.h
    ${CMAKE_CURRENT_LIST_DIR}/DbCall.h
    ${CMAKE_CURRENT_LIST_DIR}/DialogService.h
    ${CMAKE_CURRENT_LIST_DIR}/GeneralDelay.h ${CMAKE_CURRENT_LIST_DIR}/GeneralDelay.cpp
    ${CMAKE_CURRENT_LIST_DIR}/Navigator.h ${CMAKE_CURRENT_LIST_DIR}/Navigator.cpp
    ${CMAKE_CURRENT_LIST_DIR}/NavigationFrame.h ${CMAKE_CURRENT_LIST_DIR}/NavigationFrame.cpp
    ${CMAKE_CURRENT_LIST_DIR}/PasswordDialog.h ${CMAKE_CURRENT_LIST_DIR}/PasswordDialog.cpp
    ${CMAKE_CURRENT_LIST_DIR}/PdfFileSwap.h ${CMAKE_CURRENT_LIST_DIR}/PdfFileSwap.cpp
    ${CMAKE_CURRENT_LIST_DIR}/PrintPreview.h ${CMAKE_CURRENT_LIST_DIR}/PrintPreview.cpp
    ${CMAKE_CURRENT_LIST_DIR}/QueryFailureReporter.h ${CMAKE_CURRENT_LIST_DIR}/QueryFailureReporter.cpp
    ${CMAKE_CURRENT_LIST_DIR}/SelectionDialog.h ${CMAKE_CURRENT_LIST_DIR}/SelectionDialog.cpp
    ${CMAKE_CURRENT_LIST_DIR}/SettingsDialog.h ${CMAKE_CURRENT_LIST_DIR}/SettingsDialog.cpp
    ${CMAKE_CURRENT_LIST_DIR}/SettingsStore.h ${CMAKE_CURRENT_LIST_DIR}/SettingsStore.cpp
    ${CMAKE_CURRENT_LIST_DIR}/SettingsValidation.h ${CMAKE_CURRENT_LIST_DIR}/SettingsValidation.cpp
    ${CMAKE_CURRENT_LIST_DIR}/SingleInstance.h ${CMAKE_CURRENT_LIST_DIR}/SingleInstance.cpp
    ${CMAKE_CURRENT_LIST_DIR}/Startup.h ${CMAKE_CURRENT_LIST_DIR}/Startup.cpp
    ${CMAKE_CURRENT_LIST_DIR}/Twips.h ${CMAKE_CURRENT_LIST_DIR}/Twips.cpp
    ${CMAKE_CURRENT_LIST_DIR}/UnitList.h ${CMAKE_CURRENT_LIST_DIR}/UnitList.cpp
    ${CMAKE_CURRENT_LIST_DIR}/UnitMarks.h ${CMAKE_CURRENT_LIST_DIR}/UnitMarks.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ViewId.h
    ${CMAKE_CURRENT_LIST_DIR}/ViewWindow.h ${CMAKE_CURRENT_LIST_DIR}/ViewWindow.cpp
    ${CMAKE_CURRENT_LIST_DIR}/WaitWindow.h ${CMAKE_CURRENT_LIST_DIR}/WaitWindow.cpp
    ${CMAKE_CURRENT_LIST_DIR}/WidgetDialogService.h ${CMAKE_CURRENT_LIST_DIR}/WidgetDialogService.cpp
)
# `sentorax-monitor report ...`: reports without a window.
target_sources(sxgui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/cli/ReportOptions.h ${CMAKE_CURRENT_LIST_DIR}/cli/ReportOptions.cpp
    ${CMAKE_CURRENT_LIST_DIR}/cli/ReportCommand.h ${CMAKE_CURRENT_LIST_DIR}/cli/ReportCommand.cpp
)
