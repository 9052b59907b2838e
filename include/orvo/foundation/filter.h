// Predicates over records that can be combined: not, or, and, a plain test function, and the
// two constants. Combining filters own the filters they are given.
#pragma once

namespace orvo {

class OvObject;

/// A predicate over records: `Test` returns non-zero for a record that passes.
class OvFilter {
public:
    OvFilter() = default;
    virtual ~OvFilter();
    virtual unsigned Test(const OvObject* object) const = 0;

protected:
    OvFilter(const OvFilter&) = default;
    OvFilter& operator=(const OvFilter&) = default;
};

/// Passes what `f` rejects. Owns `f` and deletes it (when non-null) on destruction. A null `f`
/// rejects nothing: every record passes.
///
/// Combining filters are not copyable: a copy would share the sub-filters and both would
/// delete them.
class OvNotFilter : public OvFilter {
public:
    explicit OvNotFilter(const OvFilter* f) : f(f) {}
    OvNotFilter(const OvNotFilter&) = delete;
    OvNotFilter& operator=(const OvNotFilter&) = delete;
    ~OvNotFilter() override;
    unsigned Test(const OvObject* object) const override;

private:
    const OvFilter* f;
};

/// Two owned sub-filters (either may be null; a null sub-filter rejects). Base of `OvOrFilter`
/// and `OvAndFilter`; not copyable for the reason given at `OvNotFilter`.
class OvBinaryFilter : public OvFilter {
public:
    OvBinaryFilter(const OvFilter* a, const OvFilter* b) : a(a), b(b) {}
    OvBinaryFilter(const OvBinaryFilter&) = delete;
    OvBinaryFilter& operator=(const OvBinaryFilter&) = delete;
    ~OvBinaryFilter() override;

protected:
    static unsigned Ask(const OvFilter* filter, const OvObject* object) {
        return filter != nullptr && filter->Test(object) != 0 ? 1u : 0u;
    }

    const OvFilter* a;
    const OvFilter* b;
};

/// 1 when `a` passes (then `b` is not asked), else 1 when `b` passes, else 0.
class OvOrFilter : public OvBinaryFilter {
public:
    using OvBinaryFilter::OvBinaryFilter;
    unsigned Test(const OvObject* object) const override;
};

/// 0 when `a` rejects (then `b` is not asked), else 1 when `b` passes, else 0.
class OvAndFilter : public OvBinaryFilter {
public:
    using OvBinaryFilter::OvBinaryFilter;
    unsigned Test(const OvObject* object) const override;
};

/// Asks a plain predicate such as `IsPhotoActive`; a null function rejects everything.
class OvTestFilter : public OvFilter {
public:
    using TestFunction = unsigned (*)(const OvObject*);
    explicit OvTestFilter(TestFunction fn) : fn(fn) {}
    OvTestFilter(const OvTestFilter&) = default;
    OvTestFilter& operator=(const OvTestFilter&) = default;
    unsigned Test(const OvObject* object) const override;

private:
    TestFunction fn;
};

/// Passes everything.
class OvTrueFilter : public OvFilter {
public:
    OvTrueFilter() = default;
    OvTrueFilter(const OvTrueFilter&) = default;
    OvTrueFilter& operator=(const OvTrueFilter&) = default;
    unsigned Test(const OvObject*) const override { return 1; }
};

/// Passes nothing.
class OvFalseFilter : public OvFilter {
public:
    OvFalseFilter() = default;
    OvFalseFilter(const OvFalseFilter&) = default;
    OvFalseFilter& operator=(const OvFalseFilter&) = default;
    unsigned Test(const OvObject*) const override { return 0; }
};

}  // namespace orvo
