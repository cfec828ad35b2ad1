# Start-up, settings and dialogs of the application frame.
target_sources(sxgui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/AppContext.h
    ${CMAKE_CURRENT_LIST_DIR}/Colors.h
    ${CMAKE_CURRENT_LIST_DIR}/DialogService.h
    ${CMAKE_CURRENT_LIST_DIR}/Navigator.h ${CMAKE_CURRENT_LIST_DIR}/Navigator.cpp
    ${CMAKE_CURRENT_LIST_DIR}/NavigationFrame.h ${CMAKE_CURRENT_LIST_DIR}/NavigationFrame.cpp
    ${CMAKE_CURRENT_LIST_DIR}/QueryFailureReporter.h ${CMAKE_CURRENT_LIST_DIR}/QueryFailureReporter.cpp
    ${CMAKE_CURRENT_LIST_DIR}/SettingsStore.h ${CMAKE_CURRENT_LIST_DIR}/SettingsStore.cpp
    ${CMAKE_CURRENT_LIST_DIR}/Twips.h ${CMAKE_CURRENT_LIST_DIR}/Twips.cpp
    ${CMAKE_CURRENT_LIST_DIR}/UnitList.h ${CMAKE_CURRENT_LIST_DIR}/UnitList.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ViewId.h
    ${CMAKE_CURRENT_LIST_DIR}/ViewWindow.h ${CMAKE_CURRENT_LIST_DIR}/ViewWindow.cpp
)
target_sources(sxgui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/AppActions.h ${CMAKE_CURRENT_LIST_DIR}/AppActions.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ChoosePrinter.h ${CMAKE_CURRENT_LIST_DIR}/ChoosePrinter.cpp
    ${CMAKE_CURRENT_LIST_DIR}/GeneralDelay.h ${CMAKE_CURRENT_LIST_DIR}/GeneralDelay.cpp
)
# The start-up and the dialogs every view shares.
target_sources(sxgui PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/PasswordDialog.h ${CMAKE_CURRENT_LIST_DIR}/PasswordDialog.cpp
    ${CMAKE_CURRENT_LIST_DIR}/SelectionDialog.h ${CMAKE_CURRENT_LIST_DIR}/SelectionDialog.cpp
    ${CMAKE_CURRENT_LIST_DIR}/SettingsDialog.h ${CMAKE_CURRENT_LIST_DIR}/SettingsDialog.cpp
    ${CMAKE_CURRENT_LIST_DIR}/SettingsValidation.h ${CMAKE_CURRENT_LIST_DIR}/SettingsValidation.cpp
    ${CMAKE_CURRENT_LIST_DIR}/SingleInstance.h ${CMAKE_CURRENT_LIST_DIR}/SingleInstance.cpp
    ${CMAKE_CURRENT_LIST_DIR}/Startup.h ${CMAKE_CURRENT_LIST_DIR}/Startup.cpp
    ${CMAKE_CURRENT_LIST_DIR}/WaitWindow.h ${CMAKE_CURRENT_LIST_DIR}/WaitWindow.cpp
    ${CMAKE_CURRENT_LIST_DIR}/WidgetDialogService.h ${CMAKE_CURRENT_LIST_DIR}/WidgetDialogService.cpp
)
