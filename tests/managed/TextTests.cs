using System;

namespace QuvexNet.Tests
{
    internal sealed class TextTests
    {
        public void OfAnyScriptComeBackAsTheyWere()
        {
            string[] names = { "żółć", "naïve façade", "Ελληνικά", "русский", "漢字かな", "العربية", "\U0001F600 \U00020000", " ", "a\nb" };
            using (Quvex solver = new Quvex())
            {
                foreach (string name in names)
                {
                    QVExpression x = solver.Model.Bool();
                    x.Name = name;
                    Expect.True(x.IsNamed, "a name");
                    Expect.Equal(name, x.Name);
                    Expect.Equal(x, solver.Model.GetExpression(name));
                    Expect.True(x.ToString().Contains("name = " + name + ")"), "the name in the text");
                }
            }
        }

        public void OfAnyScriptArriveInFailures()
        {
            using (Quvex solver = new Quvex())
            {
                Expect.Refused("QVModel::getExpression", "No operator found with name 'ŝipo 船'.",
                               () => solver.Model.GetExpression("ŝipo 船"));
            }
        }

        public void OfAnyScriptAreParameters()
        {
            using (Quvex solver = new Quvex())
            {
                solver.Param.SetAdvancedParam("größe", 3);
                Expect.True(solver.Param.ToString().Contains("  größe = 3\n"), "the key in the text");
            }
        }

        public void MayBeLongOrEmpty()
        {
            string name = new string('é', 100000);
            using (Quvex solver = new Quvex())
            {
                QVExpression x = solver.Model.Bool();
                Expect.Equal("", x.Name);
                x.Name = name;
                Expect.Equal(name, x.Name);
                Expect.Refused("QVExpression::setName", "Argument name cannot be an empty string.", () => x.Name = "");
            }
        }

        public void WithoutAFormInUtf8AreRefused()
        {
            using (Quvex solver = new Quvex())
            {
                QVExpression x = solver.Model.Bool();
                Expect.Throws<ArgumentException>(() => x.Name = "a\0b");
                Expect.True(Expect.Throws<System.Text.EncoderFallbackException>(() => x.Name = "\uD800") != null, "a refusal");
                Expect.Equal("", x.Name);
            }
        }
    }
}
