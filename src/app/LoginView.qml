import QtQuick
import QtQuick.Controls.Basic
import Qt5Compat.GraphicalEffects
import QuillFern.Session
import QuillFern.Theme

// Sign in, register, or sign in with the running League client.
Item {
    id: root

    LoginForm {
        id: form
        appState: AppState
    }

    GlassCard {
        id: card
        anchors.centerIn: parent
        width: 400
        radius: 24
        padding: 32

        Column {
            width: parent.width
            spacing: Theme.sectionSpacing

            Item {
                width: parent.width
                height: 64
                Symbol {
                    id: logo
                    anchors.centerIn: parent
                    name: "bolt.shield.fill"
                    size: 52
                    color: Theme.gold
                }
                Glow {
                    anchors.fill: logo
                    source: logo
                    radius: 16
                    samples: 33
                    color: Qt.rgba(Theme.gold.r, Theme.gold.g, Theme.gold.b, 0.5)
                }
            }
            DisplayTitle {
                role: Theme.Brand
                anchors.horizontalCenter: parent.horizontalCenter
                text: "QUILL FERN"
            }
            ThemeText {
                role: Theme.Body
                anchors.horizontalCenter: parent.horizontalCenter
                text: "Endless history · performance · overlay"
                color: Theme.textSecondary
            }

            Item { width: 1; height: 4 }

            InputRow {
                width: parent.width
                icon: "envelope.fill"
                placeholder: "Email"
                text: form.email
                onTextChanged: form.email = text
                onAccepted: form.submit()
            }
            InputRow {
                width: parent.width
                icon: "lock.fill"
                placeholder: "Password"
                secret: true
                text: form.password
                onTextChanged: form.password = text
                onAccepted: form.submit()
            }

            ThemeText {
                role: Theme.Body
                width: parent.width
                visible: AppState.hasError
                text: AppState.errorMessage
                color: Theme.loss
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
            }

            // The main button.
            Rectangle {
                width: parent.width
                height: 44
                radius: Theme.buttonRadius
                color: Theme.gold
                opacity: form.canSubmit ? 1.0 : 0.6
                BusyIndicator {
                    anchors.centerIn: parent
                    width: 24; height: 24
                    running: form.busy
                    visible: form.busy
                }
                ThemeText {
                    role: Theme.Emphasis
                    anchors.centerIn: parent
                    visible: !form.busy
                    text: form.submitLabel
                    color: Theme.textOnGold
                    font.weight: Font.Bold
                }
                MouseArea {
                    anchors.fill: parent
                    enabled: form.canSubmit
                    cursorShape: enabled ? Qt.PointingHandCursor : Qt.ArrowCursor
                    onClicked: form.submit()
                }
            }

            ThemeText {
                role: Theme.Body
                anchors.horizontalCenter: parent.horizontalCenter
                text: form.toggleLabel
                color: toggleArea.containsMouse ? Theme.goldBright : Theme.gold
                font.weight: Font.Medium
                MouseArea {
                    id: toggleArea
                    anchors.fill: parent
                    hoverEnabled: true
                    cursorShape: Qt.PointingHandCursor
                    onClicked: form.toggleMode()
                }
            }

            Row {
                width: parent.width
                spacing: Theme.controlSpacing
                Rectangle { width: (parent.width - orText.width - 20) / 2; height: 1; color: Qt.rgba(1, 1, 1, 0.12); anchors.verticalCenter: parent.verticalCenter }
                ThemeText {
                    id: orText
                    role: Theme.Caption
                    text: "or"
                    color: Theme.textDim
                }
                Rectangle { width: (parent.width - orText.width - 20) / 2; height: 1; color: Qt.rgba(1, 1, 1, 0.12); anchors.verticalCenter: parent.verticalCenter }
            }

            // Sign in with the running League client.
            Rectangle {
                width: parent.width
                height: 44
                radius: Theme.buttonRadius
                color: leagueArea.containsMouse && form.canUseLeague ? Qt.rgba(Theme.teal.r, Theme.teal.g, Theme.teal.b, 0.1) : "transparent"
                border.width: 1.5
                border.color: Theme.teal
                opacity: form.canUseLeague ? 1.0 : 0.6
                BusyIndicator {
                    anchors.centerIn: parent
                    width: 24; height: 24
                    running: form.leagueBusy
                    visible: form.leagueBusy
                }
                Row {
                    anchors.centerIn: parent
                    spacing: Theme.itemSpacing
                    visible: !form.leagueBusy
                    Symbol { name: "gamecontroller.fill"; size: 18; color: Theme.teal }
                    ThemeText {
                        role: Theme.Callout
                        anchors.verticalCenter: parent.verticalCenter
                        text: "Sign in with League"
                        color: Theme.teal
                        font.weight: Font.DemiBold
                    }
                }
                MouseArea {
                    id: leagueArea
                    anchors.fill: parent
                    hoverEnabled: true
                    enabled: form.canUseLeague
                    cursorShape: enabled ? Qt.PointingHandCursor : Qt.ArrowCursor
                    onClicked: form.signInWithLeague()
                }
            }
            ThemeText {
                role: Theme.Caption
                anchors.horizontalCenter: parent.horizontalCenter
                text: "Requires the League client to be open."
                color: Theme.textDim
            }
        }
    }
}
