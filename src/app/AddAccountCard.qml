import QtQuick
import QtQuick.Controls.Basic
import QuillFern.App
import QuillFern.Theme

// Links a Riot account by Name#TAG.
GlassCard {
    id: root

    AccountLinkForm {
        id: form
        appState: AppState
    }

    Column {
        width: parent.width
        spacing: 12

        SectionLabel { text: "Link a Riot account" }
        Text {
            width: parent.width
            text: "Add your Name#TAG to backfill your match history."
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: 13
            wrapMode: Text.Wrap
        }
        Row {
            width: parent.width
            spacing: 10
            Rectangle {
                width: parent.width - addButton.width - parent.spacing
                height: 38
                radius: 10
                color: Qt.rgba(1, 1, 1, 0.04)
                border.width: 1
                border.color: riotField.activeFocus ? Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.6) : Qt.rgba(1, 1, 1, 0.12)
                TextField {
                    id: riotField
                    anchors.fill: parent
                    anchors.leftMargin: 10
                    anchors.rightMargin: 10
                    placeholderText: "Name#TAG"
                    placeholderTextColor: Theme.textDim
                    color: Theme.text
                    font.family: Theme.fontFamily
                    font.pixelSize: 14
                    background: null
                    text: form.riotId
                    onTextChanged: form.riotId = text
                    onAccepted: form.add()
                }
            }
            Rectangle {
                id: addButton
                width: 72
                height: 38
                radius: 10
                color: Theme.gold
                opacity: form.canAdd ? 1.0 : 0.5
                Text {
                    anchors.centerIn: parent
                    text: "Add"
                    color: "#1A1530"
                    font.family: Theme.fontFamily
                    font.pixelSize: 14
                    font.weight: Font.Bold
                }
                MouseArea {
                    anchors.fill: parent
                    enabled: form.canAdd
                    cursorShape: enabled ? Qt.PointingHandCursor : Qt.ArrowCursor
                    onClicked: form.add()
                }
            }
        }
        Text {
            width: parent.width
            visible: AppState.hasError
            text: AppState.errorMessage
            color: Theme.loss
            font.family: Theme.fontFamily
            font.pixelSize: 13
            wrapMode: Text.Wrap
        }
    }
}
