#include "ScanDeck.h"

#include <QApplication>
#include <vtkObject.h>

int main(int argc, char* argv[])
{
    vtkObject::SetGlobalWarningDisplay(0);
    ScanDeck::prepareGraphics();
    QApplication app(argc, argv);
    ScanDeck window;
    window.show();
    return QApplication::exec();
}
