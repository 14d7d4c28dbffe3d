import QtQuick
import QtQuick.Controls.Basic
import QuillFern.Session
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
        spacing: Theme.cardSpacing

        SectionLabel { text: "Link a Riot account" }
        ThemeText {
            role: Theme.Body
            width: parent.width
            text: "Add your Name#TAG to backfill your match history."
            color: Theme.textSecondary
            wrapMode: Text.Wrap
        }
        Row {
            width: parent.width
            spacing: Theme.controlSpacing
            Rectangle {
                width: parent.width - addButton.width - parent.spacing
                height: 38
                radius: Theme.controlRadius
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
                    font.pixelSize: Theme.fontSize(Theme.Callout)
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
                radius: Theme.controlRadius
                color: Theme.gold
                opacity: form.canAdd ? 1.0 : 0.5
                ThemeText {
                    role: Theme.Callout
                    anchors.centerIn: parent
                    text: "Add"
                    color: Theme.textOnGold
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
        ThemeText {
            role: Theme.Body
            width: parent.width
            visible: AppState.hasError
            text: AppState.errorMessage
            color: Theme.loss
            wrapMode: Text.Wrap
        }
    }
}
