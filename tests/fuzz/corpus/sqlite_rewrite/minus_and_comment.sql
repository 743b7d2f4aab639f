select 3-/* a */-1 -#b
-2