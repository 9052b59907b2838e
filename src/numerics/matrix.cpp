// OvMatrix: storage, checked access, arithmetic and line operations.
#include "orvo/numerics/matrix.h"

#include <algorithm>
#include <utility>

namespace orvo {

namespace {

// Resolves a column range of the line operations: -1 stands for the last column.
int LastColumn(int toColumn, int columns) {
    return toColumn == -1 ? columns : toColumn;
}

}  // namespace

OvMatrix::OvMatrix() {
    init(0, 0);
}

OvMatrix::OvMatrix(int lines, int columns) {
    init(lines, columns);
}

OvMatrix::OvMatrix(const OvMatrix& other) {
    init(other.lines_, other.columns_);
    std::copy_n(other.elements_.get(), ElementCount(), elements_.get());
}

OvMatrix::OvMatrix(OvMatrix&& other) noexcept
    : lines_(std::exchange(other.lines_, 0)),
      columns_(std::exchange(other.columns_, 0)),
      elements_(std::move(other.elements_)) {}

OvMatrix::~OvMatrix() = default;

void OvMatrix::init(int lines, int columns) {
    lines_ = std::max(lines, 0);
    columns_ = std::max(columns, 0);
    elements_ = std::make_unique<double[]>(ElementCount());  // zero-filled
}

void OvMatrix::CheckLine(int i, int code) const {
    if (i < 1 || i > lines_) throw code;
}

OvMatrix& OvMatrix::operator=(const OvMatrix& other) {
    if (lines_ != other.lines_ || columns_ != other.columns_) throw kOvErrMatrixAssign;
    if (this != &other) std::copy_n(other.elements_.get(), ElementCount(), elements_.get());
    return *this;
}

void OvMatrix::Clear() {
    std::fill_n(elements_.get(), ElementCount(), 0.0);
}

void OvMatrix::SetIdent() {
    if (lines_ != columns_) throw kOvErrMatrixNotSquareId;
    Clear();
    for (int i = 1; i <= lines_; ++i)
        elements_[Offset(i, i)] = 1.0;
}

double OvMatrix::SetElem(int i, int j, double value) {
    if (i < 1 || i > lines_ || j < 1 || j > columns_) throw kOvErrMatrixSetElem;
    elements_[Offset(i, j)] = value;
    return value;
}

double OvMatrix::GetElem(int i, int j) const {
    if (i < 1 || i > lines_ || j < 1 || j > columns_) throw kOvErrMatrixGetElem;
    return elements_[Offset(i, j)];
}

double* OvMatrix::operator[](int i) {
    CheckLine(i, kOvErrMatrixLine);
    return elements_.get() + Offset(i, 1);
}

const double* OvMatrix::operator[](int i) const {
    CheckLine(i, kOvErrMatrixLine);
    return elements_.get() + Offset(i, 1);
}

OvMatrix OvMatrix::operator*(const OvMatrix& b) const {
    if (columns_ != b.lines_) throw kOvErrMatrixProduct;
    OvMatrix product(lines_, b.columns_);
    // Line-oriented loop order: every element still sums its terms in k order.
    for (int i = 1; i <= lines_; ++i) {
        double* out = product.elements_.get() + product.Offset(i, 1);
        for (int k = 1; k <= columns_; ++k) {
            const double aik = elements_[Offset(i, k)];
            const double* bk = b.elements_.get() + b.Offset(k, 1);
            for (int j = 0; j < b.columns_; ++j)
                out[j] += aik * bk[j];
        }
    }
    return product;
}

OvMatrix& OvMatrix::operator*=(const OvMatrix& b) {
    const OvMatrix product = *this * b;
    return *this = product;
}

OvMatrix OvMatrix::operator*(double factor) const {
    OvMatrix result(*this);
    result *= factor;
    return result;
}

OvMatrix& OvMatrix::operator*=(double factor) {
    const std::size_t count = ElementCount();
    for (std::size_t k = 0; k < count; ++k)
        elements_[k] *= factor;
    return *this;
}

OvMatrix OvMatrix::operator/(double divisor) const {
    return *this * (1.0 / divisor);
}

OvMatrix& OvMatrix::operator/=(double divisor) {
    return *this *= 1.0 / divisor;
}

OvMatrix OvMatrix::operator+(const OvMatrix& b) const {
    if (lines_ != b.lines_ || columns_ != b.columns_) throw kOvErrMatrixAdd;
    OvMatrix result(*this);
    result += b;
    return result;
}

OvMatrix& OvMatrix::operator+=(const OvMatrix& b) {
    if (lines_ != b.lines_ || columns_ != b.columns_) throw kOvErrMatrixAdd;
    const std::size_t count = ElementCount();
    for (std::size_t k = 0; k < count; ++k)
        elements_[k] += b.elements_[k];
    return *this;
}

OvMatrix OvMatrix::operator-(const OvMatrix& b) const {
    if (lines_ != b.lines_ || columns_ != b.columns_) throw kOvErrMatrixSub;
    OvMatrix result(*this);
    result -= b;
    return result;
}

OvMatrix& OvMatrix::operator-=(const OvMatrix& b) {
    if (lines_ != b.lines_ || columns_ != b.columns_) throw kOvErrMatrixSub;
    const std::size_t count = ElementCount();
    for (std::size_t k = 0; k < count; ++k)
        elements_[k] -= b.elements_[k];
    return *this;
}

OvVector OvMatrix::operator*(const OvVector& v) const {
    if (columns_ != v.GetSize()) throw kOvErrMatrixTimesVector;
    OvVector result(lines_);
    const double* x = v.Data();
    for (int i = 1; i <= lines_; ++i) {
        const double* line = elements_.get() + Offset(i, 1);
        double sum = 0.0;
        for (int j = 0; j < columns_; ++j)
            sum += line[j] * x[j];
        result[i] = sum;
    }
    return result;
}

OvMatrix OvMatrix::Transpose() const {
    OvMatrix result(columns_, lines_);
    for (int i = 1; i <= lines_; ++i) {
        for (int j = 1; j <= columns_; ++j)
            result.elements_[result.Offset(j, i)] = (*this)[i][j - 1];
    }
    return result;
}

void OvMatrix::SetLine(int i, const OvVector& v) {
    for (int k = 1; k <= v.GetSize(); ++k)
        SetElem(i, k, v[k]);
}

void OvMatrix::SetRow(int j, const OvVector& v) {
    for (int k = 1; k <= v.GetSize(); ++k)
        SetElem(k, j, v[k]);
}

void OvMatrix::GetLine(int i, OvVector& v) const {
    for (int k = 1; k <= v.GetSize(); ++k)
        v[k] = GetElem(i, k);
}

void OvMatrix::GetRow(int j, OvVector& v) const {
    for (int k = 1; k <= v.GetSize(); ++k)
        v[k] = GetElem(k, j);
}

void OvMatrix::SwapLines(int a, int b) {
    CheckLine(a, kOvErrMatrixLineOp);
    CheckLine(b, kOvErrMatrixLineOp);
    if (a == b) return;
    std::swap_ranges(elements_.get() + Offset(a, 1), elements_.get() + Offset(a, 1) + columns_,
                     elements_.get() + Offset(b, 1));
}

void OvMatrix::MultLine(int i, int fromColumn, double f, int toColumn) {
    CheckLine(i, kOvErrMatrixLineOp);
    const int last = LastColumn(toColumn, columns_);
    if (fromColumn > last) return;
    if (fromColumn < 1) throw kOvErrMatrixGetElem;
    // The columns inside the matrix are done first; a range that runs past the last column
    // fails when it gets there, as an element-by-element loop would.
    double* line = elements_.get() + Offset(i, 1);
    for (int j = fromColumn; j <= std::min(last, columns_); ++j)
        line[j - 1] *= f;
    if (last > columns_) throw kOvErrMatrixGetElem;
}

void OvMatrix::AddLines(int target, int source, int fromColumn, double f, int toColumn) {
    CheckLine(target, kOvErrMatrixLineOp);
    CheckLine(source, kOvErrMatrixLineOp);
    const int last = LastColumn(toColumn, columns_);
    if (fromColumn > last) return;
    if (fromColumn < 1) throw kOvErrMatrixGetElem;
    double* to = elements_.get() + Offset(target, 1);
    const double* from = elements_.get() + Offset(source, 1);
    for (int j = fromColumn; j <= std::min(last, columns_); ++j)
        to[j - 1] += f * from[j - 1];
    if (last > columns_) throw kOvErrMatrixGetElem;
}

bool OvMatrix::IsIdent() const {
    for (int i = 1; i <= lines_; ++i) {
        for (int j = 1; j <= columns_; ++j) {
            const double value = elements_[Offset(i, j)];
            if (value != 0.0 && (i != j || value != 1.0)) return false;
        }
    }
    return true;
}

double OvMatrix::Sarrus() const {
    if (lines_ < 3 || columns_ < 3) throw kOvErrMatrixSarrus;
    // The first nine stored elements, read as a 3 x 3 block in storage order.
    const double* a = elements_.get();
    return a[0] * a[4] * a[8] + a[1] * a[5] * a[6] + a[2] * a[3] * a[7] - a[2] * a[4] * a[6] -
           a[0] * a[5] * a[7] - a[1] * a[3] * a[8];
}

void OvMatrix::CalcNGLAN(const OvVector& a) {
    orvo::CalcNGLAN(*this, a);
}

int OvMatrix::DreieckLoeserOben(OvMatrix& b) {
    return orvo::DreieckLoeserOben(*this, b);
}

int OvMatrix::GaussLoeserRelMax(OvMatrix& b) {
    return orvo::GaussLoeserRelMax(*this, b);
}

double OvMatrix::Det() const {
    return orvo::Det(*this);
}

OvMatrix& OvMatrix::Invert(int* result) {
    if (lines_ != columns_) throw kOvErrMatrixInvert;
    OvMatrix copy(*this);
    SetIdent();
    const int code = orvo::GaussLoeserRelMax(copy, *this);
    if (result != nullptr) *result = code;
    return *this;
}

OvMatrix operator*(double factor, const OvMatrix& m) {
    return m * factor;
}

OvMatrix operator/(double divisor, const OvMatrix& m) {
    return m * (1.0 / divisor);
}

}  // namespace orvo
