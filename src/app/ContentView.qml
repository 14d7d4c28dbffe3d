import QtQuick
import QtQuick.Controls.Basic
import QuillFern.App

// Switches the whole window on the session phase.
Item {
    id: root

    Rectangle {
        anchors.fill: parent
        gradient: Gradient {
            GradientStop { position: 0.0; color: "#1A1530" }
            GradientStop { position: 1.0; color: "#0C0A18" }
        }
    }

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
        sourceComponent: AppState.phase === AppState.SignedIn ? signedIn : signedOut
    }

    Component {
        id: signedOut
        SignedOutPlaceholder {}
    }

    Component {
        id: signedIn
        SignedInPlaceholder {}
    }
}
