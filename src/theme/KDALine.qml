import QtQuick
import QuillFern.Theme

// Kills / deaths / assists, deaths in red.
Text {
    property int kills: 0
    property int deaths: 0
    property int assists: 0
    property real size: 14

    textFormat: Text.StyledText
    font.family: Theme.fontFamily
    font.pixelSize: size
    font.weight: Font.Bold
    color: Theme.text
    text: Theme.kdaLineText(kills, deaths, assists)
}
