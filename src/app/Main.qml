import QtQuick
import QtQuick.Controls.Basic
import QuillFern.App

ApplicationWindow {
    id: window
    width: 1280
    height: 800
    minimumWidth: 1040
    minimumHeight: 740
    visible: true
    title: "Quill Fern"
    color: "#0C0A18"
    font.family: "Inter"

    // Always dark, with the gold accent.
    palette.window: "#0C0A18"
    palette.windowText: Qt.rgba(1, 1, 1, 0.96)
    palette.base: "#0E1422"
    palette.text: Qt.rgba(1, 1, 1, 0.96)
    palette.button: "#0E1422"
    palette.buttonText: Qt.rgba(1, 1, 1, 0.96)
    palette.highlight: "#C8AA6E"
    palette.highlightedText: "#0C0A18"
    palette.placeholderText: Qt.rgba(1, 1, 1, 0.42)

    ContentView {
        anchors.fill: parent
    }
}
