// SPDX-License-Identifier: GPL-3.0-or-later
//
// The eight pairs of labels that show a polynomial's coefficients. Two forms have
// them under the same names.
#ifndef WINDOW_COEFFICIENTLABELS_H
#define WINDOW_COEFFICIENTLABELS_H

#include <array>

#include <QLabel>

struct CoefficientLabel {
    QLabel *name;
    QLabel *value;

    void set_visible(bool visible) const
    {
        name->setVisible(visible);
        value->setVisible(visible);
    }
};

using CoefficientLabels = std::array<CoefficientLabel, 8>;

template <typename Form> CoefficientLabels coefficient_labels(const Form &form)
{
    return {{{form.lblCoeff0, form.lblCoeff0Value},
             {form.lblCoeff1, form.lblCoeff1Value},
             {form.lblCoeff2, form.lblCoeff2Value},
             {form.lblCoeff3, form.lblCoeff3Value},
             {form.lblCoeff4, form.lblCoeff4Value},
             {form.lblCoeff5, form.lblCoeff5Value},
             {form.lblCoeff6, form.lblCoeff6Value},
             {form.lblCoeff7, form.lblCoeff7Value}}};
}

#endif
