#include "elliptic_curve.h"

#include <openssl/bn.h>
#include <openssl/ec.h>
#include <openssl/obj_mac.h>

#include <cstdlib>
#include <memory>

namespace controller {

namespace {

using Number = std::unique_ptr<BIGNUM, decltype(&BN_free)>;
using Point = std::unique_ptr<EC_POINT, decltype(&EC_POINT_free)>;
using Curve = std::unique_ptr<EC_GROUP, decltype(&EC_GROUP_free)>;

/// A library without the curve, or without memory, leaves nothing to test with.
void require(bool isDone) {
    if (!isDone) std::abort();
}

Curve makeCurve() {
    Curve curve(EC_GROUP_new_by_curve_name(NID_X9_62_prime256v1), &EC_GROUP_free);
    require(curve != nullptr);
    return curve;
}

Point makePoint(const Curve& curve) {
    Point point(EC_POINT_new(curve.get()), &EC_POINT_free);
    require(point != nullptr);
    return point;
}

Number toNumber(const CurveNumber& bytes) {
    Number number(BN_lebin2bn(bytes.data(), static_cast<int>(bytes.size()), nullptr), &BN_free);
    require(number != nullptr);
    return number;
}

PublicKey coordinates(const Curve& curve, const Point& point) {
    const Number x(BN_new(), &BN_free);
    const Number y(BN_new(), &BN_free);
    require(EC_POINT_get_affine_coordinates(curve.get(), point.get(), x.get(), y.get(), nullptr) ==
            1);
    PublicKey key;
    require(BN_bn2lebinpad(x.get(), key.x.data(), static_cast<int>(key.x.size())) >= 0);
    require(BN_bn2lebinpad(y.get(), key.y.data(), static_cast<int>(key.y.size())) >= 0);
    return key;
}

} // namespace

PublicKey publicKeyOf(const CurveNumber& secret) {
    const Curve curve = makeCurve();
    const Point point = makePoint(curve);
    const Number factor = toNumber(secret);
    require(EC_POINT_mul(curve.get(), point.get(), factor.get(), nullptr, nullptr, nullptr) == 1);
    return coordinates(curve, point);
}

std::optional<CurveNumber> sharedSecret(const CurveNumber& own, const PublicKey& others) {
    const Curve curve = makeCurve();
    const Point given = makePoint(curve);
    const Number x = toNumber(others.x);
    const Number y = toNumber(others.y);
    if (EC_POINT_set_affine_coordinates(curve.get(), given.get(), x.get(), y.get(), nullptr) != 1)
        return std::nullopt;
    const Point point = makePoint(curve);
    const Number factor = toNumber(own);
    require(EC_POINT_mul(curve.get(), point.get(), nullptr, given.get(), factor.get(), nullptr) ==
            1);
    return coordinates(curve, point).x;
}

} // namespace controller
