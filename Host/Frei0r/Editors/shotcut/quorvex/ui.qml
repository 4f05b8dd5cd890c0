import QtQuick 2.12
import QtQuick.Controls 2.12
import QtQuick.Layouts 1.12
import Shotcut.Controls 1.0 as Shotcut

// The plug-in takes every value from 0 to 1: Glitch Type below 0.5 is Block
// Glitch, Speed is a third of the effect's Speed, Seed is a 999th of the Seed.
Shotcut.KeyframableFilter {
    property string glitchType: '0'
    property string speed: '1'
    property string seed: '2'
    property double speedFactor: 3
    property double seedFactor: 999
    property double glitchTypeDefault: 0
    property double speedDefault: 1 / speedFactor
    property double seedDefault: 0

    function setControls() {
        var position = getPosition();
        blockUpdate = true;
        glitchTypeCombo.currentIndex = filter.getDouble(glitchType) < 0.5 ? 0 : 1;
        // Projects keep 6 digits (Speed 1 is 0.333333): shown to the slider's 2.
        speedSlider.value = Math.round(filter.getDouble(speed, position) * speedFactor * 100) / 100;
        speedKeyframesButton.checked = filter.animateIn <= 0 && filter.animateOut <= 0 && filter.keyframeCount(speed) > 0;
        seedSlider.value = Math.round(filter.getDouble(seed) * seedFactor);
        blockUpdate = false;
        enableControls(isSimpleKeyframesActive());
    }

    function enableControls(enabled) {
        speedSlider.enabled = enabled;
    }

    function updateSimpleKeyframes() {
        updateFilter(speed, speedSlider.value / speedFactor, speedKeyframesButton, null);
    }

    keyframableParameters: [speed]
    startValues: [0]
    middleValues: [speedDefault]
    endValues: [0]
    width: 350
    height: 150
    Component.onCompleted: {
        if (filter.isNew) {
            filter.set(glitchType, glitchTypeDefault);
            filter.set(speed, speedDefault);
            filter.set(seed, seedDefault);
            filter.savePreset(preset.parameters);
        }
        setControls();
    }

    GridLayout {
        anchors.fill: parent
        anchors.margins: 8
        columns: 4

        Label {
            text: qsTr('Preset')
            Layout.alignment: Qt.AlignRight
        }

        Shotcut.Preset {
            id: preset

            parameters: [glitchType, speed, seed]
            Layout.columnSpan: 3
            onBeforePresetLoaded: {
                resetSimpleKeyframes();
            }
            onPresetSelected: {
                setControls();
                initializeSimpleKeyframes();
            }
        }

        Label {
            text: 'Glitch Type'
            Layout.alignment: Qt.AlignRight
        }

        Shotcut.ComboBox {
            id: glitchTypeCombo

            implicitWidth: 180
            model: ['Block Glitch', 'Bad TV']
            onActivated: {
                enabled = false;
                filter.set(glitchType, index);
                enabled = true;
            }
        }

        Shotcut.UndoButton {
            onClicked: {
                glitchTypeCombo.currentIndex = glitchTypeDefault;
                filter.set(glitchType, glitchTypeDefault);
            }
            Layout.columnSpan: 2
        }

        Label {
            text: 'Speed'
            Layout.alignment: Qt.AlignRight
        }

        Shotcut.SliderSpinner {
            id: speedSlider

            minimumValue: 0
            maximumValue: 3
            stepSize: 0.01
            decimals: 2
            onValueChanged: updateFilter(speed, speedSlider.value / speedFactor, speedKeyframesButton, getPosition())
        }

        Shotcut.UndoButton {
            onClicked: speedSlider.value = speedDefault * speedFactor
        }

        Shotcut.KeyframesButton {
            id: speedKeyframesButton

            onToggled: {
                enableControls(true);
                toggleKeyframes(checked, speed, speedSlider.value / speedFactor);
            }
        }

        Label {
            text: 'Seed'
            Layout.alignment: Qt.AlignRight
        }

        Shotcut.SliderSpinner {
            id: seedSlider

            minimumValue: 0
            maximumValue: 999
            stepSize: 1
            decimals: 0
            onValueChanged: {
                if (!blockUpdate)
                    filter.set(seed, seedSlider.value / seedFactor);
            }
        }

        Shotcut.UndoButton {
            onClicked: seedSlider.value = seedDefault * seedFactor
            Layout.columnSpan: 2
        }

        Item {
            Layout.fillHeight: true
        }
    }

    Connections {
        function onChanged() {
            setControls();
        }

        function onInChanged() {
            updateSimpleKeyframes();
        }

        function onOutChanged() {
            updateSimpleKeyframes();
        }

        function onAnimateInChanged() {
            updateSimpleKeyframes();
        }

        function onAnimateOutChanged() {
            updateSimpleKeyframes();
        }

        function onPropertyChanged(name) {
            setControls();
        }

        target: filter
    }

    Connections {
        function onPositionChanged() {
            setControls();
        }

        target: producer
    }
}
