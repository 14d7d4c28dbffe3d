import QtQuick
import QtQuick.Controls.Basic
import QuillFern.App
import QuillFern.Theme

ApplicationWindow {
    id: window
    width: 1280
    height: 800
    minimumWidth: 1040
    minimumHeight: 740
    visible: true
    title: "Quill Fern"
    color: Theme.wallBottom
    font.family: Theme.fontFamily

    // Always dark, with the gold accent: the controls Qt draws itself take the theme's colours.
    palette.window: Theme.wallBottom
    palette.windowText: Theme.text
    palette.base: Theme.glassDark
    palette.text: Theme.text
    palette.button: Theme.glassDark
    palette.buttonText: Theme.text
    palette.highlight: Theme.gold
    palette.highlightedText: Theme.wallBottom
    palette.placeholderText: Theme.textDim

    ContentView {
        anchors.fill: parent
    }
}
