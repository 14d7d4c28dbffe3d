import QtQuick
import QuillFern.App

// Stands where the sign-in form goes.
Item {
    Column {
        anchors.centerIn: parent
        width: 360
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
            text: "Endless history · performance · overlay"
            color: Qt.rgba(1, 1, 1, 0.62)
            font.pixelSize: 14
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
