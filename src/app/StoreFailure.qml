import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import QuillFern.Theme

// Shown instead of the main window when the archive cannot be opened. The archive is left as it
// is; closing this window ends the app.
Window {
    id: root
    required property string message

    width: 560
    height: 320
    minimumWidth: 460
    minimumHeight: 280
    visible: true
    title: "Quill Fern"
    color: Theme.wallBottom

    Wallpaper { anchors.fill: parent }

    GlassCard {
        anchors.centerIn: parent
        width: parent.width - 64
        padding: 24
        ColumnLayout {
            width: parent.width
            spacing: Theme.blockSpacing
            Symbol {
                Layout.alignment: Qt.AlignHCenter
                name: "exclamationmark.triangle.fill"
                size: 34
                color: Theme.gold
            }
            ThemeText {
                role: Theme.Callout
                Layout.fillWidth: true
                text: root.message
                wrapMode: Text.Wrap
                horizontalAlignment: Text.AlignHCenter
                font.weight: Font.DemiBold
            }
            Rectangle {
                Layout.alignment: Qt.AlignHCenter
                Layout.topMargin: 4
                implicitWidth: 140
                implicitHeight: 40
                radius: Theme.buttonRadius
                color: Theme.gold
                ThemeText {
                    role: Theme.Callout
                    anchors.centerIn: parent
                    text: "Quit"
                    color: Theme.textOnGold
                    font.weight: Font.Bold
                }
                MouseArea {
                    anchors.fill: parent
                    cursorShape: Qt.PointingHandCursor
                    onClicked: root.close()
                }
            }
        }
    }
}
