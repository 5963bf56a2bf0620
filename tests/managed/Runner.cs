using System;
using System.Linq;
using System.Reflection;

namespace QuvexNet.Tests
{
    /// <summary>
    /// Runs the public methods of all classes whose names end in "Tests", each on a new object, or those of the classes
    /// that are named on the command line. An object that can be disposed of is, after its test.
    /// </summary>
    internal static class Runner
    {
        private static int Main(string[] names)
        {
            Type[] classes = Assembly.GetExecutingAssembly().GetTypes()
                .Where(t => t.Name.EndsWith("Tests") && (names.Length == 0 || names.Contains(t.Name))).ToArray();
            int nbRun = 0;
            int nbFailed = 0;
            foreach (Type type in classes)
            {
                const BindingFlags flags = BindingFlags.Public | BindingFlags.Instance | BindingFlags.DeclaredOnly;
                foreach (MethodInfo test in type.GetMethods(flags).Where(m => m.Name != "Dispose"))
                {
                    ++nbRun;
                    if (!Passes(type, test)) ++nbFailed;
                }
            }
            Console.WriteLine("{0} tests run, {1} failed", nbRun, nbFailed);
            return nbRun > 0 && nbFailed == 0 ? 0 : 1;
        }

        private static bool Passes(Type type, MethodInfo test)
        {
            try
            {
                object instance = Activator.CreateInstance(type, true);
                using (instance as IDisposable) ((Action)Delegate.CreateDelegate(typeof(Action), instance, test))();
                return true;
            }
            catch (Exception failure)
            {
                Console.WriteLine("{0}.{1} FAILED: {2}", type.Name, test.Name, failure);
                return false;
            }
        }
    }
}
