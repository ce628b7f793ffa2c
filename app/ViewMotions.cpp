#include "ViewMotions.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLayout>
#include <QPropertyAnimation>
#include <QSplitter>
#include <QTabWidget>

#include <vtkCamera.h>
#include <vtkRenderer.h>

#include <algorithm>

namespace viewmotions {

void setCameraView(vtkRenderer* renderer, CameraView view)
{
    vtkCamera* camera = renderer->GetActiveCamera();
    switch (view) {
    case CameraView::Top:
        camera->SetPosition(0, 0, 15);
        camera->SetViewUp(0, 1, 0);
        break;
    case CameraView::Left:
        camera->SetPosition(-10, 0, 5);
        camera->SetViewUp(0, 0, 1);
        break;
    case CameraView::Right:
        camera->SetPosition(10, 0, 5);
        camera->SetViewUp(0, 0, 1);
        break;
    case CameraView::Front:
        camera->SetPosition(0, -10, 5);
        camera->SetViewUp(0, 0, 1);
        break;
    }
    renderer->ResetCamera();
}

void slideTablePane(QSplitter* splitter, bool open)
{
    const QList<int> sizes = splitter->sizes();
    const int total = sizes.value(0) + sizes.value(1);
    const int start = sizes.value(0);
    const int target = open ? std::min(520, total * 2 / 5) : 0;
    constexpr int kSteps = 8;
    for (int step = 1; step <= kSteps; ++step) {
        const int width = start + (target - start) * step / kSteps;
        splitter->setSizes({width, total - width});
        QElapsedTimer pause;
        pause.start();
        while (pause.elapsed() < 15)
            QApplication::processEvents(QEventLoop::AllEvents, 5);
    }
}

void slideInPage(QTabWidget* tabs, int index)
{
    QWidget* page = tabs->widget(index);
    if (!page)
        return;
    const QRect end = page->geometry();
    auto* animation = new QPropertyAnimation(page, "geometry", page);
    animation->setDuration(300);
    animation->setEasingCurve(QEasingCurve::OutBack);
    animation->setStartValue(QRect(end.x(), -70, end.width(), end.height()));
    animation->setEndValue(end);
    // The page may have changed its height meanwhile (its controls wrap on
    // a narrow window): the stack places it anew once it has landed.
    QObject::connect(animation, &QPropertyAnimation::finished, page, [page] {
        if (QWidget* stack = page->parentWidget(); stack && stack->layout())
            stack->layout()->invalidate();
    });
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

}  // namespace viewmotions
