// Vectors of two to four numbers, as inputs hold them.
#pragma once

namespace SubstanceAir {
namespace Math {

template <class T>
struct Vector2 {
    T x{}, y{};
};

template <class T>
struct Vector3 {
    T x{}, y{}, z{};
};

template <class T>
struct Vector4 {
    T x{}, y{}, z{}, w{};
};

template <class T>
bool operator==(const Vector2<T>& a, const Vector2<T>& b) {
    return a.x == b.x && a.y == b.y;
}
template <class T>
bool operator==(const Vector3<T>& a, const Vector3<T>& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}
template <class T>
bool operator==(const Vector4<T>& a, const Vector4<T>& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;
}

} // namespace Math
} // namespace SubstanceAir
