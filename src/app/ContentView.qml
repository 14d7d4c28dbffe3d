import QtQuick
import QtQuick.Controls.Basic
import QuillFern.App
import QuillFern.Session
import QuillFern.Theme

// Switches the whole window on the session phase.
Item {
    id: root

    Wallpaper { anchors.fill: parent }

    BusyIndicator {
        anchors.centerIn: parent
        width: 72
        height: 72
        running: visible
        visible: AppState.phase === AppState.Loading
    }

    Loader {
        anchors.fill: parent
        active: AppState.phase !== AppState.Loading
        sourceComponent: AppState.phase === AppState.SignedIn ? mainView : loginView
    }

    Component { id: loginView; LoginView {} }
    Component { id: mainView; MainView {} }
}
