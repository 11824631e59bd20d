#include "meta_analysis/platform/common/KXDistFun.h"
#include "meta_analysis/platform/common/IncompleteGamma.h"
#include "meta_analysis/platform/common/IncompleteBeta.h"
#include <cmath>
double KXDistFun::CdfChi(double x, double df) noexcept { return distribution::LowerGamma(df/2,x/2);}
double KXDistFun::CdfF(double f, double d1,double d2) noexcept { 
double a=d1/2,b=d2/2; distribution::BetaPoint p;
if(f<=1){double r=f*a/b; p={a,b,r/(1+r),1/(1+r),a*(1-f)/(1+r)};}
else {double g=1/f; double s=b/a*g; p={a,b,1/(1+s),s/(1+s),b*(1-f)/f/(1+s)};}
return distribution::LowerBeta(p);}
#include "meta_analysis/platform/common/StudentT.h"
double KXDistFun::CdfT(double t, double df) noexcept {
 double L=distribution::StudentT(df).Upper(std::fabs(t));
return t<0?L:1-L;}
double KXDistFun::IdfT(double, double , double,double) noexcept {return 0;}
double KXDistFun::IdfStdNorm(double) noexcept {return 0;}
double KXDistFun::CdfStdNorm(double z) noexcept {return std::erfc(-z*.70710678118654752440)/2;}
