#pragma once
// Many 3D text labels drawn by one actor, each turned to face the camera
// exactly as a follower would turn it (about its own position, towards the
// camera's position, upright along the view-up). On software OpenGL every
// actor costs tens of microseconds per render whatever its size, and an
// overlay carries dozens of labels: one actor for all of them keeps the
// frame rate. The glyphs are turned again only when the camera has moved,
// just before the actor is measured or drawn.

#include <vtkOpenGLActor.h>
#include <vtkSmartPointer.h>

#include <array>
#include <string>
#include <vector>

class vtkCamera;
class vtkPoints;
class vtkPolyData;

class FacingLabels : public vtkOpenGLActor {
public:
    static FacingLabels* New();
    vtkTypeMacro(FacingLabels, vtkOpenGLActor);

    struct Label {
        std::string id;    // the view id the label is known by
        std::string text;  // drawn with the vector font
        double position[3];
        double scale;
    };

    // Replaces every label; they face `camera` from now on.
    void setLabels(const std::vector<Label>& labels, vtkCamera* camera);
    const std::vector<Label>& labels() const { return m_labels; }
    // The label with this id, or null.
    const Label* find(const std::string& id) const;
    // Where the label's glyph points are drawn for the camera as it is now.
    std::vector<std::array<double, 3>> drawnPoints(const std::string& id);

    using vtkOpenGLActor::GetBounds;
    double* GetBounds() override;
    void Render(vtkRenderer* renderer, vtkMapper* mapper) override;

protected:
    FacingLabels();
    ~FacingLabels() override;

private:
    FacingLabels(const FacingLabels&) = delete;
    void operator=(const FacingLabels&) = delete;

    // Turns every glyph towards the camera if it moved since the last turn.
    void faceCamera();

    std::vector<Label> m_labels;
    // Per label: the first of its points in the drawn geometry; one more
    // entry marks the end.
    std::vector<vtkIdType> m_firstPoint;
    // The glyph points in the label's own plane, before scale and turn.
    std::vector<std::array<double, 3>> m_glyphPoints;
    vtkSmartPointer<vtkPolyData> m_geometry;
    vtkSmartPointer<vtkCamera> m_camera;
    // The camera as the glyphs were last turned for it.
    std::array<double, 10> m_facedCamera{};
    bool m_faced = false;
};
