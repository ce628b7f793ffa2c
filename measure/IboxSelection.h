#pragma once
// How the box range dialog reaches the main window: it reads the selection
// box and stores an edited one. A corner is four floats (x, y, z in metres
// and a fourth component that is carried along but never tested).

struct BoxCorner {
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
    float w = 1.0f;
};

struct BoxRange {
    BoxCorner min;
    BoxCorner max;

    // Inclusive on all three axes; a range with min > max on an axis holds nothing.
    bool contains(float x, float y, float z) const
    {
        return min.x <= x && x <= max.x && min.y <= y && y <= max.y && min.z <= z && z <= max.z;
    }
};

class IboxSelection {
public:
    // Stores the box and rebuilds the selection from the current frame.
    virtual void setBoxRange(const BoxCorner& min, const BoxCorner& max) = 0;
    virtual BoxRange getBoxRange() const = 0;

protected:
    ~IboxSelection() = default;
};
