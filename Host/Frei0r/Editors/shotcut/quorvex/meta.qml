import QtQuick 2.0
import org.shotcut.qml 1.0

// Shotcut lists a filter only with this file, in share/shotcut/qml/filters/quorvex/ beside its program.
Metadata {
    type: Metadata.Filter
    name: "Quorvex"
    keywords: 'glitch block bad tv distort broken quorvex'
    objectName: 'quorvex'
    mlt_service: "frei0r.quorvex"
    qml: "ui.qml"

    // Speed is keyframed in frei0r's units: 1/3 is Speed 1.
    keyframes {
        allowAnimateIn: true
        allowAnimateOut: true
        simpleProperties: ['1']
        parameters: [
            Parameter {
                name: 'Speed'
                property: '1'
                isCurve: true
                minimum: 0
                maximum: 1
            }
        ]
    }
}
