#pragma once

/// A complex number in float, its operations rounded as each one states.
struct Complex {
    float re = 0;
    float im = 0;
};

constexpr Complex operator+(Complex z, Complex w) { return {z.re + w.re, z.im + w.im}; }
constexpr Complex operator-(Complex z, Complex w) { return {z.re - w.re, z.im - w.im}; }
constexpr Complex operator*(Complex z, Complex w)
{
    return {z.re * w.re - z.im * w.im, z.re * w.im + z.im * w.re};
}
/// The reciprocal of the squared magnitude is formed in double.
Complex operator/(Complex z, Complex w);

Complex Sine(Complex z);
Complex Cosine(Complex z);
Complex SquaredMagnitude(Complex z);

/// T. E. Hull, T. F. Fairgrieve, P. T. P. Tang, "Implementing the complex arcsine and arccosine functions
/// using exception handling", ACM Trans. Math. Softw. 23 (1997). On the real axis beyond -1 and 1, where
/// total internal reflection lies, the imaginary part has the sign opposite to x.
Complex Arcsine(Complex z);
