#include <gtest/gtest.h>
#include <kvbase/color/kv_ct_icc_cam.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <vector>

namespace {

using kv::detail::IccCamModel;

IccCamModel conditions(float La, float Yb, float C, float Nc, float F) {
    IccCamModel model;
    model.La = La;
    model.Yb = Yb;
    model.C = C;
    model.Nc = Nc;
    model.F = F;
    model.CalcCoefficients();
    return model;
}

// The surrounds of CIE 159:2004, over what adapts an eye.
std::vector<IccCamModel> viewingConditions() {
    std::vector<IccCamModel> models;
    for (const float La : {1.0F, 16.0F, 64.0F, 318.31F, 500.0F, 2000.0F})
        for (const float Yb : {10.0F, 20.0F, 40.0F})
            for (const auto &surround :
                 {std::array{0.69F, 1.0F, 1.0F}, {0.59F, 0.9F, 0.9F}, {0.525F, 0.8F, 0.8F}})
                models.push_back(conditions(La, Yb, surround[0], surround[1], surround[2]));
    return models;
}

// The factors of the worked example of CIE 159:2004, with as many digits as are printed there.
TEST(IccCam, FactorsOfTheViewingConditions) {
    const IccCamModel bright = conditions(318.31F, 20, 0.69F, 1, 1);
    EXPECT_NEAR(bright.FL, 1.17, 0.005);
    EXPECT_NEAR(bright.n, 0.2, 1e-7);
    EXPECT_NEAR(bright.Nbb, 1.0003, 5e-5);
    EXPECT_NEAR(bright.z, 1.9272, 5e-5);
    EXPECT_NEAR(bright.D, 0.994, 5e-4);
    EXPECT_NEAR(conditions(31.83F, 20, 0.69F, 1, 1).FL, 0.54, 0.005);
    EXPECT_NEAR(conditions(0.2F, 20, 0.69F, 1, 1).FL, 0.100390625, 1e-7);  // k = 1/2, where both terms count
    EXPECT_NEAR(bright.tFactor, std::pow(1.64 - std::pow(0.29, 0.2), 0.73), 1e-6);
}

TEST(IccCam, MatricesInvertEachOther) {
    for (int column = 0; column < 3; ++column) {
        float xyz[3] = {}, cones[3], back[3];
        xyz[column] = 1;
        IccCamModel::Multiply_vect_by_mx(xyz, cones, IccCamModel::M);
        IccCamModel::Multiply_vect_by_mx(cones, back, IccCamModel::Minv);
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(back[i], xyz[i], 2e-5);  // the digits of the published matrices
    }
}

TEST(IccCam, CompressionIsOddSteadyAndUndone) {
    for (const IccCamModel &model : viewingConditions()) {
        const float x0 = model.x0;
        EXPECT_EQ(model.Hyperbolic(0), 0);
        EXPECT_NEAR(model.Hyperbolic(std::nextafter(x0, 1.0F)), model.Hyperbolic(x0),
                    3e-5F * model.Hyperbolic(x0));
        EXPECT_NEAR(model.Hyperbolic(model.FL), IccCamModel::F_Function(model.FL), 1e-5);
        float previous = -1;
        for (float x = x0 / 16; x < 1000 * model.FL; x *= 1.01F) {
            const float y = model.Hyperbolic(x);
            EXPECT_GT(y, previous);
            EXPECT_EQ(model.Hyperbolic(-x), -y);
            EXPECT_NEAR(model.HyperbolicInv(y), x, 2e-5F * x) << x;
            EXPECT_EQ(model.HyperbolicInv(-y), -model.HyperbolicInv(y));
            previous = y;
        }
        const float h = IccCamModel::H_Function(2);
        EXPECT_NEAR(IccCamModel::H_FunctionInv(h), 2, 1e-5);
    }
}

TEST(IccCam, WhiteIsHundredAndBlackIsZero) {
    for (const IccCamModel &model : viewingConditions()) {
        float jab[3] = {}, xyz[3] = {};
        model.XyzToJab(model.whitePoint, jab);
        EXPECT_FLOAT_EQ(jab[0], 100);
        model.XyzToJab(xyz, jab);
        for (const float axis : jab)
            EXPECT_EQ(axis, 0);
        for (const auto &black : {std::array{0.0F, 0.0F, 0.0F},
                                  {0.0F, 50.0F, -20.0F},
                                  {0.0000099F, 1.0F, 1.0F},
                                  {-5.0F, 0.0F, 0.0F}}) {
            model.JabToXyz(black.data(), xyz);
            for (const float axis : xyz)
                EXPECT_EQ(axis, 0);
        }
    }
}

// The more light, the lighter; and a colour whose response would be negative is the one of response 0.
TEST(IccCam, LightnessRisesAndNegativeResponsesAreCut) {
    const IccCamModel model;
    float previous = -1;
    for (float y = 0; y <= 200; y += 0.25F) {
        const float xyz[] = {y * 0.9642F, y, y * 0.8249F};
        float jab[3];
        model.XyzToJab(xyz, jab);
        EXPECT_GT(jab[0], previous);
        EXPECT_LT(std::hypot(jab[1], jab[2]), 12) << "a grey, adapted to all but a few percent";
        previous = jab[0];
    }
    const float blue[] = {10, 20, -30};
    float expected[3] = {}, found[3] = {};
    model.XyzToJab(blue, found);
    float cones[3], xyz[3];
    IccCamModel::Multiply_vect_by_mx(blue, cones, IccCamModel::M);
    EXPECT_LT(cones[2], 0);
    cones[2] = 0;
    IccCamModel::Multiply_vect_by_mx(cones, xyz, IccCamModel::Minv);
    model.XyzToJab(xyz, expected);
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(found[i], expected[i], 2e-3);
}

// A dense grid, through the arrays of the class. The matrices have six digits each, and miss each other's
// inverse by 1.5e-5; what single precision adds is less.
TEST(IccCam, InverseGivesBackWhatHasPositiveResponses) {
    std::vector<float> xyz;
    for (float x = 0.5F; x < 110; x += 5.5F)
        for (float y = 0.5F; y < 110; y += 5.5F)
            for (float z = 0.5F; z < 110; z += 5.5F) {
                const float color[] = {x, y, z};
                float cones[3];
                IccCamModel::Multiply_vect_by_mx(color, cones, IccCamModel::M);
                if (cones[0] > 0 && cones[1] > 0) xyz.insert(xyz.end(), color, color + 3);
            }
    EXPECT_GT(xyz.size(), 3 * 7000U);
    for (const IccCamModel &model : viewingConditions()) {
        std::vector<float> back = xyz;
        KV_CTIccCam cam;
        cam.SetParameter_La(model.La);
        cam.SetParameter_Yb(model.Yb);
        cam.SetParameter_C(model.C);
        cam.SetParameter_Nc(model.Nc);
        cam.SetParameter_F(model.F);
        cam.XYZ2Jab(back.data(), back.data(), static_cast<int>(xyz.size() / 3));
        cam.Jab2XYZ(back.data(), back.data(), static_cast<int>(xyz.size() / 3));
        for (std::size_t i = 0; i < xyz.size(); ++i) {
            const float *const color = &xyz[i - i % 3];
            const float scale = 1 + std::max({color[0], color[1], color[2]});
            ASSERT_NEAR(back[i], xyz[i], 5e-5F * scale) << i << " La " << model.La;
        }
    }
}

TEST(IccCam, EveryParameterCounts) {
    const float xyz[] = {30, 20, 60};
    float white[] = {95.05F, 100, 108.88F}, read[3] = {}, before[3] = {}, after[3] = {};
    KV_CTIccCam cam;
    IccCamModel().XyzToJab(xyz, before);
    const auto expectChange = [&](const char *name) {
        float color[] = {30, 20, 60};
        cam.XYZ2Jab(color, after, 1);
        EXPECT_NE(after[1], before[1]) << name;
        std::copy_n(after, 3, before);
    };
    cam.SetParameter_La(60);
    expectChange("La");
    cam.SetParameter_Yb(40);
    expectChange("Yb");
    cam.SetParameter_C(0.5F);
    expectChange("C");
    cam.SetParameter_Nc(0.9F);
    expectChange("Nc");
    cam.SetParameter_F(0.8F);
    expectChange("F");
    cam.SetParameter_WhitePoint(white);
    expectChange("white point");
    cam.GetParameter_WhitePoint(read);
    EXPECT_TRUE(std::equal(white, white + 3, read));
    cam.XYZ2Jab(white, after, 1);
    EXPECT_FLOAT_EQ(after[0], 100);
    const KV_CTIccCam copy = cam;
    float back[3] = {};
    copy.Jab2XYZ(before, back, 1);
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(back[i], xyz[i], 3e-3);
}

TEST(IccCam, EccentricityMeetsTheUniqueHues) {
    const float stops[][2] = {{20.14F, 0.8F},
                              {90, 0.7F},
                              {164.25F, 1},
                              {237.53F, 1.2F},
                              {380.14F, 0.8F},
                              {0, 0.8F + 0.4F * 20.14F / 142.61F},
                              {360, 0.8F + 0.4F * 20.14F / 142.61F},
                              {127.125F, 0.85F}};
    for (const auto &stop : stops)
        EXPECT_NEAR(IccCamModel::IccCam_e(stop[0]), stop[1], 1e-6) << stop[0];
}

}  // namespace
