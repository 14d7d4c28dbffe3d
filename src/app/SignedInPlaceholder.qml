import QtQuick
import QtQuick.Controls.Basic
import QuillFern.App

// Stands where the main window's sidebar and sections go.
Item {
    Column {
        anchors.centerIn: parent
        width: 420
        spacing: 14

        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "QUILL FERN"
            color: Qt.rgba(1, 1, 1, 0.96)
            font.pixelSize: 34
            font.weight: Font.Black
            font.letterSpacing: 2
        }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            text: AppState.isSyncing ? "Syncing…" : "Sync now"
            color: "#E4CC92"
            font.pixelSize: 13
            font.weight: Font.DemiBold
            MouseArea {
                anchors.fill: parent
                enabled: !AppState.isSyncing
                cursorShape: Qt.PointingHandCursor
                onClicked: AppState.requestSync()
            }
        }
        Text {
            width: parent.width
            visible: AppState.hasError
            text: AppState.errorMessage
            color: "#E84057"
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            font.pixelSize: 13
        }
    }
}
