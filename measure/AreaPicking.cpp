#include "AreaPicking.h"

#include <vtkAbstractPicker.h>
#include <vtkCommand.h>
#include <vtkRenderWindowInteractor.h>

namespace measure {

bool isAreaPicking(vtkRenderWindowInteractor* interactor)
{
    // In selection mode the style swaps the interactor's picker for an area picker.
    vtkAbstractPicker* picker = interactor->GetPicker();
    return picker && picker->IsA("vtkAreaPicker");
}

void setAreaPicking(vtkRenderWindowInteractor* interactor, bool on)
{
    if (isAreaPicking(interactor) == on)
        return;
    // A press and a release of "x", as a keyboard would deliver them.
    interactor->SetKeyEventInformation(0, 0, 'x', 1, "x");
    interactor->InvokeEvent(vtkCommand::KeyPressEvent, nullptr);
    interactor->InvokeEvent(vtkCommand::KeyReleaseEvent, nullptr);
    interactor->SetKeyEventInformation(0, 0, 0, 0, nullptr);
}

}  // namespace measure
