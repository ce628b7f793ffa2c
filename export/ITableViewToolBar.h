#pragma once
// How the point table's tool bar reaches the main window. Changes apply from
// the next frame.

class ITableViewToolBar {
public:
    // Rows shown per frame from the frame cloud; -1 shows every point.
    virtual void setTableRows(int rows) = 0;
    // Decimals of z, azimuth and distance in the table.
    virtual void setTablePrecision(int precision) = 0;

protected:
    ~ITableViewToolBar() = default;
};
