#pragma once
// Many 3D text labels drawn by one actor, each turned to face the camera
// exactly as a follower would turn it (about its own position, towards the
// camera's position, upright along the view-up). On software OpenGL every
// actor costs tens of microseconds per render whatever its size, and an
// overlay carries dozens of labels: one actor for all of them keeps the
// frame rate. The glyphs are turned again only when the camera has moved,
// just before the actor is measured or drawn. Labels wholly outside the
// view are left out of the drawn geometry, as the renderer would cull a
// follower of their own: most of an overlay's labels lie off screen and
// their glyphs would cost more than all the rest of the overlay.

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
    // Whether the label's glyphs are drawn for the camera as it is now and
    // a view of this width over height.
    bool inView(const std::string& id, double aspect);

    using vtkOpenGLActor::GetBounds;
    double* GetBounds() override;
    void Render(vtkRenderer* renderer, vtkMapper* mapper) override;

protected:
    FacingLabels();
    ~FacingLabels() override;

private:
    FacingLabels(const FacingLabels&) = delete;
    void operator=(const FacingLabels&) = delete;

    // Turns every glyph towards the camera and leaves out the labels out of
    // view, if the camera or the view's shape changed since the last time.
    void faceCamera(double aspect);
    // Keeps the glyph cells of the labels in view.
    void cull(double aspect);
    // Turns every glyph towards the camera as last recorded.
    void turn();

    std::vector<Label> m_labels;
    // Per label: the first of its points in the drawn geometry; one more
    // entry marks the end.
    std::vector<vtkIdType> m_firstPoint;
    // The glyph points in the label's own plane, before scale and turn.
    std::vector<std::array<double, 3>> m_glyphPoints;
    // Per label: its glyph cells, each as the number of points and then
    // their ids in the drawn geometry.
    std::vector<std::vector<vtkIdType>> m_cells;
    std::vector<bool> m_inView;
    vtkSmartPointer<vtkPolyData> m_geometry;
    vtkSmartPointer<vtkCamera> m_camera;
    // The camera and view shape as the glyphs were last turned and culled
    // for them.
    std::array<double, 16> m_facedCamera{};
    double m_aspect = 1.0;
    bool m_faced = false;
    bool m_culled = false;
};
