// OvVector: storage, checked access and arithmetic.
#include "orvo/numerics/vector.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvo {

OvVector::OvVector(int size) {
    init(size);
}

OvVector::OvVector(const OvVector& other) {
    init(other.size_);
    std::copy_n(other.elements_.get(), size_, elements_.get());
}

OvVector::OvVector(OvVector&& other) noexcept
    : size_(std::exchange(other.size_, 0)), elements_(std::move(other.elements_)) {}

OvVector::~OvVector() = default;

void OvVector::init(int size) {
    size_ = std::max(size, 0);
    // Value-initialised, so a new vector is zero-filled.
    elements_ = std::make_unique<double[]>(static_cast<std::size_t>(size_));
}

void OvVector::CheckSameSize(const OvVector& other, int code) const {
    if (size_ != other.size_) throw code;
}

OvVector& OvVector::operator=(const OvVector& other) {
    CheckSameSize(other, kOvErrVectorAssign);
    if (this != &other) std::copy_n(other.elements_.get(), size_, elements_.get());
    return *this;
}

void OvVector::Clear() {
    std::fill_n(elements_.get(), size_, 0.0);
}

double OvVector::SetElem(int i, double value) {
    if (i < 1 || i > size_) throw kOvErrVectorSetElem;
    elements_[i - 1] = value;
    return value;
}

double OvVector::GetElem(int i) const {
    if (i < 1 || i > size_) throw kOvErrVectorGetElem;
    return elements_[i - 1];
}

double& OvVector::operator[](int i) {
    if (i < 1 || i > size_) throw kOvErrVectorIndex;
    return elements_[i - 1];
}

double OvVector::operator[](int i) const {
    if (i < 1 || i > size_) throw kOvErrVectorIndex;
    return elements_[i - 1];
}

void OvVector::ChangeType(eOvVectorType type) {
    if (size_ == 3 && type == eOvVectorXYZW) {
        OvVector grown(4);
        std::copy_n(elements_.get(), 3, grown.elements_.get());
        grown.elements_[3] = 1.0;
        // Not operator=, which never reshapes: growing is the point here.
        size_ = 4;
        elements_ = std::move(grown.elements_);
        return;
    }
    if (size_ == 4 && type != eOvVectorXYZW) {
        OvVector shrunk(3);
        std::copy_n(elements_.get(), 3, shrunk.elements_.get());
        if (type == eOvVectorXY0) shrunk.elements_[2] = 0.0;
        if (type == eOvVectorXY1) shrunk.elements_[2] = 1.0;
        size_ = 3;
        elements_ = std::move(shrunk.elements_);
    }
}

bool OvVector::operator==(const OvVector& other) const {
    return size_ == other.size_ &&
           std::equal(elements_.get(), elements_.get() + size_, other.elements_.get());
}

OvVector OvVector::operator*(double factor) const {
    OvVector result(*this);
    result *= factor;
    return result;
}

OvVector& OvVector::operator*=(double factor) {
    for (int i = 0; i < size_; ++i)
        elements_[i] *= factor;
    return *this;
}

OvVector OvVector::operator/(double divisor) const {
    return *this * (1.0 / divisor);
}

OvVector& OvVector::operator/=(double divisor) {
    return *this *= 1.0 / divisor;
}

double OvVector::operator*(const OvVector& other) const {
    CheckSameSize(other, kOvErrVectorDot);
    double sum = 0.0;
    for (int i = 0; i < size_; ++i)
        sum += elements_[i] * other.elements_[i];
    return sum;
}

OvVector OvVector::operator%(const OvVector& other) const {
    if (size_ != 3 || other.size_ != 3) throw kOvErrVectorCross;
    const double* a = elements_.get();
    const double* b = other.elements_.get();
    OvVector result(3);
    result.elements_[0] = a[1] * b[2] - a[2] * b[1];
    result.elements_[1] = a[2] * b[0] - a[0] * b[2];
    result.elements_[2] = a[0] * b[1] - a[1] * b[0];
    return result;
}

OvVector OvVector::operator+(const OvVector& other) const {
    CheckSameSize(other, kOvErrVectorAddSub);
    OvVector result(*this);
    result += other;
    return result;
}

OvVector OvVector::operator-(const OvVector& other) const {
    CheckSameSize(other, kOvErrVectorAddSub);
    OvVector result(*this);
    result -= other;
    return result;
}

OvVector& OvVector::operator+=(const OvVector& other) {
    CheckSameSize(other, kOvErrVectorAddSub);
    for (int i = 0; i < size_; ++i)
        elements_[i] += other.elements_[i];
    return *this;
}

OvVector& OvVector::operator-=(const OvVector& other) {
    CheckSameSize(other, kOvErrVectorAddSub);
    for (int i = 0; i < size_; ++i)
        elements_[i] -= other.elements_[i];
    return *this;
}

double OvVector::Abs() const {
    double sum = 0.0;
    for (int i = 0; i < size_; ++i)
        sum += elements_[i] * elements_[i];
    return std::sqrt(sum);
}

OvVector& OvVector::Normalize() {
    return *this *= 1.0 / Abs();
}

bool OvVector::IsNormalized(double eps) const {
    const double length = Abs();
    if (length < 1.0 - eps) return false;
    return length <= 1.0 + eps;
}

OvVector operator*(double factor, const OvVector& v) {
    return v * factor;
}

OvVector operator/(double divisor, const OvVector& v) {
    return v * (1.0 / divisor);
}

double abs(const OvVector& v) {
    return v.Abs();
}

}  // namespace orvo
